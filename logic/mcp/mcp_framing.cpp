#include "logic/mcp/mcp_framing.h"

#include <algorithm>

#include "base/number_text.h"
#include "base/text.h"

namespace brindle::MCPFraming {
namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kHeaderEnd = "\r\n\r\n";
constexpr std::string_view kLengthName = "content-length:";
constexpr std::string_view kBlanks = " \t";

std::string_view trimBlanks(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

std::optional<std::uint64_t> lengthIn(std::string_view line) {
  if (!beginsWithAnyCase(line, kLengthName)) return std::nullopt;
  const std::string_view digits = trimBlanks(line.substr(kLengthName.size()));
  if (digits.empty() || digits.find_first_not_of("0123456789") != std::string_view::npos) return std::nullopt;
  const std::optional<std::int64_t> value = integerFromText(digits);
  if (!value) return std::nullopt;
  return static_cast<std::uint64_t>(*value);
}

std::optional<std::uint64_t> contentLength(std::string_view header) {
  std::optional<std::uint64_t> found;
  while (!header.empty()) {
    const std::size_t end = header.find(kLineEnd);
    const std::string_view line = header.substr(0, end);
    if (const auto length = lengthIn(line)) found = length;
    if (end == std::string_view::npos) break;
    header.remove_prefix(end + kLineEnd.size());
  }
  return found;
}

// How many bytes of blank lines stand at the front. A last one without its line feed may still become a header
// line, so it stays.
std::size_t blankLines(std::string_view buffer) {
  std::size_t taken = 0;
  while (true) {
    const std::size_t at = buffer.find_first_not_of(" \t\r", taken);
    if (at == std::string_view::npos || buffer[at] != '\n') return taken;
    taken = at + 1;
  }
}

Step lineStep(std::string_view buffer) {
  Step found;
  const std::size_t lineFeed = buffer.find('\n');
  const bool complete = lineFeed != std::string_view::npos;
  found.kind = complete ? Step::Kind::message : Step::Kind::wait;
  found.bodyLength = complete ? lineFeed : buffer.size();
  found.end = complete ? lineFeed + 1 : 0;
  return found;
}

Step headerStep(std::string_view buffer) {
  Step found;
  found.style = MCPFrameStyle::header;
  const std::size_t headerLength = buffer.find(kHeaderEnd);
  if (headerLength == std::string_view::npos) {
    // All but one byte of the empty line may be here already.
    found.headerLength = buffer.size() - std::min(buffer.size(), kHeaderEnd.size() - 1);
    return found;
  }
  found.headerLength = headerLength;
  found.bodyBegin = headerLength + kHeaderEnd.size();
  const std::optional<std::uint64_t> length = contentLength(buffer.substr(0, headerLength));
  if (!length) {
    found.kind = Step::Kind::skip;
    found.end = found.bodyBegin;
    return found;
  }
  found.bodyLength = *length;
  if (*length > buffer.size() - found.bodyBegin) return found;
  found.kind = Step::Kind::message;
  found.end = found.bodyBegin + static_cast<std::size_t>(*length);
  return found;
}

}  // namespace

Step step(std::string_view buffer) {
  Step found;
  if (const std::size_t blank = blankLines(buffer); blank > 0) {
    found.kind = Step::Kind::skip;
    found.end = blank;
    return found;
  }
  if (buffer.empty()) return found;
  if (buffer.front() == '{') return lineStep(buffer);
  return headerStep(buffer);
}

std::optional<std::string> nextMessage(std::string& buffer) {
  std::size_t taken = 0;
  while (true) {
    const Step found = step(std::string_view(buffer).substr(taken));
    if (found.kind == Step::Kind::skip) {
      taken += found.end;
      continue;
    }
    std::optional<std::string> message;
    if (found.kind == Step::Kind::message) {
      message = buffer.substr(taken + found.bodyBegin, static_cast<std::size_t>(found.bodyLength));
    }
    buffer.erase(0, taken + found.end);
    return message;
  }
}

std::string frame(std::string_view reply) {
  std::string framed = "Content-Length: " + std::to_string(reply.size());
  framed += kHeaderEnd;
  framed += reply;
  return framed;
}

}  // namespace brindle::MCPFraming
