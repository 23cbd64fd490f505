// Cuts the bytes that an MCP client sends into messages, within fixed limits.
//
// Used by the host of `brindle mcp`, which feeds what each read gave it and then takes messages until there is none.
// Owns the only buffer; holds at most kMCPMessageLimit, kMCPHeaderLimit and one piece of input together when every
// feed is followed by taking all messages. Total for any bytes. Single-threaded.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "logic/mcp/mcp_framing.h"

namespace brindle {

/// The longest header block that is waited for, its empty line not counted, in bytes; a longer one is refused.
inline constexpr std::size_t kMCPHeaderLimit = std::size_t{8} << 10;
/// The longest message, its line feed or header not counted, in bytes; a longer one is refused.
inline constexpr std::size_t kMCPMessageLimit = std::size_t{1} << 20;

struct MCPMessage {
  std::string bytes;
  MCPFrameStyle style = MCPFrameStyle::line;

  bool operator==(const MCPMessage&) const = default;
};

/// A line longer than kMCPMessageLimit. Reported once, as soon as it is known; the rest of the line is dropped and
/// reading goes on behind it.
struct MCPOversizedLine {
  bool operator==(const MCPOversizedLine&) const = default;
};

/// A header block or an announced body over its limit. Nothing is read after it: what follows cannot be told from
/// the body that was announced.
struct MCPOversizedFrame {
  bool operator==(const MCPOversizedFrame&) const = default;
};

using MCPInput = std::variant<MCPMessage, MCPOversizedLine, MCPOversizedFrame>;

class MCPMessageReader {
 public:
  /// Adds bytes as they came; ignored after an oversized frame.
  void feed(std::string_view bytes);

  /// The next thing that came; none until more bytes are fed.
  [[nodiscard]] std::optional<MCPInput> next();

  /// How many bytes are held.
  [[nodiscard]] std::size_t held() const { return buffer_.size() - taken_; }

 private:
  enum class State { reading, droppingLine, ended };

  void dropLine();
  void end();

  std::string buffer_;
  std::size_t taken_ = 0;  // bytes at the front of the buffer that were handed out or dropped
  State state_ = State::reading;
};

}  // namespace brindle
