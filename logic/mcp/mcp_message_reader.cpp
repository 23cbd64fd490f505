#include "logic/mcp/mcp_message_reader.h"

namespace brindle {

void MCPMessageReader::feed(std::string_view bytes) {
  if (state_ == State::ended) return;
  // Handed-out bytes go in one move a feed, not one a message: many small messages in one read stay linear.
  buffer_.erase(0, taken_);
  taken_ = 0;
  buffer_ += bytes;
}

std::optional<MCPInput> MCPMessageReader::next() {
  if (state_ == State::droppingLine) dropLine();
  while (state_ == State::reading) {
    const std::string_view rest = std::string_view(buffer_).substr(taken_);
    const MCPFraming::Step found = MCPFraming::step(rest);
    // Limits come before the kind, so that the outcome does not depend on where the reads were cut.
    if (found.style == MCPFrameStyle::line && found.bodyLength > kMCPMessageLimit) {
      state_ = State::droppingLine;
      dropLine();
      return MCPOversizedLine{};
    }
    if (found.headerLength > kMCPHeaderLimit || found.bodyLength > kMCPMessageLimit) {
      end();
      return MCPOversizedFrame{};
    }
    if (found.kind == MCPFraming::Step::Kind::wait) return std::nullopt;
    taken_ += found.end;
    if (found.kind == MCPFraming::Step::Kind::skip) continue;
    return MCPMessage{std::string(rest.substr(found.bodyBegin, static_cast<std::size_t>(found.bodyLength))),
                      found.style};
  }
  return std::nullopt;
}

void MCPMessageReader::dropLine() {
  const std::size_t lineFeed = buffer_.find('\n', taken_);
  if (lineFeed == std::string::npos) {
    buffer_.clear();
    taken_ = 0;
    return;
  }
  taken_ = lineFeed + 1;
  state_ = State::reading;
}

void MCPMessageReader::end() {
  state_ = State::ended;
  buffer_ = std::string();
  taken_ = 0;
}

}  // namespace brindle
