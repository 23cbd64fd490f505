// One client's conversation with the MCP server, from bytes to bytes.
//
// Used by the command `mcp` between its two descriptors, and by tests without any. Owns what is known of the client:
// the bytes of an unfinished message and how it wants its replies. Single-threaded.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "base/json_value.h"
#include "logic/mcp/mcp_message_reader.h"
#include "logic/mcp/mcp_reply_style.h"

namespace brindle {

/// The longest reply in bytes, its framing not counted. A longer one is replaced by a tool result that says so.
inline constexpr std::size_t kMCPReplyLimit = std::size_t{256} << 10;

class MCPConversation {
 public:
  /// The reply to a message, none where there is to be none.
  using Answer = std::function<std::optional<std::string>(const JsonObject& message)>;
  /// Writes all of the bytes; false when nobody reads any more.
  using Send = std::function<bool(std::string_view bytes)>;

  struct Handlers {
    Answer answer;
    Send send;
  };
  MCPConversation(MCPFramingChoice choice, Handlers handlers) : style_(choice), handlers_(std::move(handlers)) {}

  /// Takes bytes as they came and sends the reply to every message that they complete, one by one. Replies of the
  /// client are never answered. False when the conversation is over: the client announced a frame over the limit, or
  /// a reply could not be sent.
  [[nodiscard]] bool receive(std::string_view bytes);

 private:
  [[nodiscard]] bool handle(const MCPMessage& message);
  [[nodiscard]] bool reply(std::string_view text, MCPFrameStyle style) const;
  [[nodiscard]] bool parseError(MCPFrameStyle style) const;

  MCPMessageReader reader_;
  MCPReplyStyle style_;
  Handlers handlers_;
};

}  // namespace brindle
