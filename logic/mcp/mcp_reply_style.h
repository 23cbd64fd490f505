// Decides how a reply goes onto the wire, so that clients which cannot bear a header still understand it.
//
// Used by the host of `brindle mcp`, one value a connection. The rule: a request that came framed gets a framed
// reply. To a request that came as a line, `header` answers with the frame and one line feed behind it, which
// most clients read past; `lines` with the bare JSON text and a line feed, which all clients read; `automatic` as
// `header` until the client turns out to be one that does not bear it. Owns what is known of the client.
// Single-threaded.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "base/enum_text.h"
#include "base/json_value.h"
#include "logic/mcp/mcp_framing.h"

namespace brindle {

/// What the person chose with --framing or BRINDLE_MCP_FRAMING.
enum class MCPFramingChoice { automatic, lines, header };
template <>
inline constexpr auto kEnumTexts<MCPFramingChoice> = std::to_array<EnumText<MCPFramingChoice>>({
    {MCPFramingChoice::automatic, "auto"},
    {MCPFramingChoice::lines, "lines"},
    {MCPFramingChoice::header, "header"},
});

/// Whether a client that names itself so in `clientInfo` fails on a header before the reply. A version that is
/// missing or cannot be read counts as too old: bare lines work with every client.
struct MCPClientInfo {
  std::string_view name;
  std::string_view version;
};
[[nodiscard]] bool needsBareLines(MCPClientInfo client);

class MCPReplyStyle {
 public:
  explicit MCPReplyStyle(MCPFramingChoice choice) : choice_(choice) {}

  /// Learns from a message before it is answered: the client's name in an `initialize` request, or an error without
  /// an id (-32700, -32600), with which a client complains of bytes that it could not read.
  void observe(const JsonObject& message);

  /// The bytes to write for `reply` to a request that came in style `request`.
  [[nodiscard]] std::string wrap(std::string_view reply, MCPFrameStyle request) const;

 private:
  MCPFramingChoice choice_;
  bool bareLines_ = false;  // automatic: the client does not bear a header
};

/// Whether a message is the answer to a request rather than one: no `method`, but a `result` or an `error`. Such a
/// message is never answered; a client that complains of an answer would complain of that answer again, for ever.
[[nodiscard]] bool isMCPReply(const JsonObject& message);

}  // namespace brindle
