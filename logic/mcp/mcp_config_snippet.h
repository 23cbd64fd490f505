// How to register the MCP server with an agent client: a short title and the exact text to run or paste.
//
// Shown by the settings and by the command's setup. Pure.
#pragma once

#include <string>
#include <string_view>

#include "base/enum_text.h"

namespace brindle {

enum class MCPClient { claudeCode, cursor, codex };

template <>
inline constexpr auto kEnumTexts<MCPClient> = std::to_array<EnumText<MCPClient>>({
    {MCPClient::claudeCode, "claudeCode"},
    {MCPClient::cursor, "cursor"},
    {MCPClient::codex, "codex"},
});

struct MCPConfigSnippet {
  std::string title;
  std::string text;

  /// What stands in place of the JSON when the path is no text.
  static constexpr std::string_view kNoJson =
      "The path of brindle is not valid UTF-8, so it cannot be written as JSON.";

  /// The snippet for `client`; `path` is that of the executable that serves MCP when run with the argument "mcp".
  /// A shell command for claudeCode, JSON for cursor, a TOML table for codex. The shell command reproduces every path
  /// without NUL; the TOML escapes backslashes and double quotes alone, so a path with control characters or of
  /// invalid UTF-8 gives a text that TOML readers refuse.
  [[nodiscard]] static MCPConfigSnippet make(MCPClient client, std::string_view path);

  bool operator==(const MCPConfigSnippet&) const = default;
};

}  // namespace brindle
