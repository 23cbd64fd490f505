#include "inventory/proc_text.h"

#include <algorithm>
#include <limits>

#include "base/lines.h"
#include "base/number_text.h"

namespace brindle {
namespace {

std::optional<std::uint64_t> unsignedFrom(std::string_view text) { return wholeFromText<std::uint64_t>(text); }

}  // namespace

std::vector<std::string> parseArguments(std::string_view text) {
  std::vector<std::string> arguments;
  text = text.substr(0, text.find_last_not_of('\0') + 1);
  while (!text.empty() && arguments.size() < kArgumentCountLimit) {
    arguments.emplace_back(takePiece(text, '\0').substr(0, kArgumentByteLimit));
  }
  return arguments;
}

std::string commandLineOf(const std::vector<std::string>& arguments) {
  std::string line;
  for (const std::string& argument : arguments) {
    if (!line.empty()) line += ' ';
    line += argument;
  }
  return line;
}

std::vector<NamedVariable> parseNamedVariables(std::string_view text, std::span<const std::string_view> names) {
  std::vector<NamedVariable> found;
  while (!text.empty()) {
    const std::string_view entry = takePiece(text, '\0');
    const std::size_t equals = entry.find('=');
    if (equals == std::string_view::npos) continue;
    const std::string_view name = entry.substr(0, equals);
    const std::string_view value = entry.substr(equals + 1);
    if (value.size() > kVariableByteLimit || std::ranges::find(names, name) == names.end()) continue;
    const bool known = std::ranges::any_of(found, [&](const NamedVariable& each) { return each.name == name; });
    if (!known) found.push_back({std::string(name), std::string(value)});
  }
  return found;
}

std::optional<std::uint64_t> parsePrivatePages(std::string_view text) {
  text = text.substr(0, text.find('\n'));
  takePiece(text, ' ');
  const auto resident = unsignedFrom(takePiece(text, ' '));
  const auto shared = unsignedFrom(takePiece(text, ' '));
  if (!resident || !shared) return std::nullopt;
  return *resident > *shared ? *resident - *shared : 0;
}

std::optional<std::uint64_t> parseSwapBytes(std::string_view text) {
  constexpr std::string_view kKey = "VmSwap:";
  while (!text.empty()) {
    std::string_view line = takePiece(text, '\n');
    if (!line.starts_with(kKey)) continue;
    line.remove_prefix(kKey.size());
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    const auto kibibytes = unsignedFrom(takePiece(line, ' '));
    if (!kibibytes || line != "kB" || *kibibytes > std::numeric_limits<std::uint64_t>::max() / 1024)
      return std::nullopt;
    return *kibibytes * 1024;
  }
  return std::nullopt;
}

std::vector<std::int32_t> parsePidList(std::string_view text) {
  std::vector<std::int32_t> pids;
  while (!text.empty()) {
    const auto pid = unsignedFrom(takePiece(text, ' '));
    if (pid && *pid > 0 && *pid <= std::numeric_limits<std::int32_t>::max()) {
      pids.push_back(static_cast<std::int32_t>(*pid));
    }
  }
  return pids;
}

std::optional<std::uint64_t> parseSocketLink(std::string_view link) {
  constexpr std::string_view kHead = "socket:[";
  if (!link.starts_with(kHead) || !link.ends_with(']')) return std::nullopt;
  return unsignedFrom(link.substr(kHead.size(), link.size() - kHead.size() - 1));
}

std::string_view withoutDeletedMark(std::string_view link) {
  constexpr std::string_view kMark = " (deleted)";
  return link.ends_with(kMark) ? link.substr(0, link.size() - kMark.size()) : link;
}

}  // namespace brindle
