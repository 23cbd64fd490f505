// Our MCP server in a JSON document with "mcpServers", as Claude Code and Cursor keep it.
//
// Used by `brindle setup`. Pure: text in, text out. Everything that is not ours keeps its bytes.
#pragma once

#include <string_view>

#include "cli/setup_edit.h"

namespace brindle {

/// Whose server "brindle" is in `text`; absent also when the text is no such document. It is ours when it runs our
/// program with "mcp" as its first argument, and stale when that program lies elsewhere.
[[nodiscard]] ServerState jsonServerState(std::string_view text, std::string_view program);

/// `text` with our server, put right where it was stale; a foreign one is left alone. Refused when the text is not
/// valid JSON or has another form.
[[nodiscard]] EditedText withJsonServer(std::string_view text, std::string_view program);

/// `text` without our server. An empty "mcpServers" goes too, unless `before`, the text from before, has it.
struct ServerTexts {
  std::string_view text;
  std::string_view before;
};
[[nodiscard]] EditedText withoutJsonServer(const ServerTexts& texts, std::string_view program);

}  // namespace brindle
