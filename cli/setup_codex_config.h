// Our lines in Codex's config.toml: the notify command at the top, the MCP server at the end.
//
// Used by `brindle setup`. The file is edited as text, between marker lines of ours: a TOML document that is written
// anew loses its comments. It is parsed before and after, only to see that it is valid. Pure.
#pragma once

#include <string_view>

#include "cli/setup_edit.h"

namespace brindle {

/// What of ours to add. The server is left out where Codex itself registers it.
struct CodexParts {
  std::string_view program;
  bool server = true;
};

/// `config` with our parts, put right where our lines name another place of our program. A notify command or a server
/// of somebody else is left alone. Refused when the text is not valid TOML, or would not be any more.
[[nodiscard]] EditedText withCodexParts(std::string_view config, const CodexParts& parts);

/// `config` without the lines between our markers. What is ours but stands outside of them is left and named.
[[nodiscard]] EditedText withoutCodexParts(std::string_view config, const CodexParts& parts);

/// Whose server "brindle" is; absent also when the text is not valid TOML.
[[nodiscard]] ServerState tomlServerState(std::string_view config, std::string_view program);

}  // namespace brindle
