// Our hooks in the settings of Claude Code: one for notifications, one for the end of a turn.
//
// Used by `brindle setup`. Pure: text in, text out. Everything that is not ours keeps its bytes.
#pragma once

#include <string>
#include <string_view>

#include "cli/setup_edit.h"

namespace brindle {

/// `settings` with a hook for each of our events; one that names another place of our program is put right. Refused
/// when it is not valid JSON, or "hooks" and what is in it have another form than Claude Code's.
[[nodiscard]] EditedText withClaudeHooks(std::string_view settings, std::string_view program);

/// `settings` without them. Containers that are left empty go too, unless `before`, the settings from before the hooks
/// were added, has them; it is empty when it is not known.
struct ClaudeSettings {
  std::string_view settings;
  std::string_view before;
};
[[nodiscard]] EditedText withoutClaudeHooks(const ClaudeSettings& texts, std::string_view program);

}  // namespace brindle
