// The agent plans that are known, and why the use of some cannot be read.
//
// Used by the application's plan screen and by the plan report.
#pragma once

#include <optional>
#include <string_view>

#include "base/enum_text.h"

namespace brindle {

enum class PlanProvider { claude, codex, cursor, gemini, copilot };

template <>
inline constexpr auto kEnumTexts<PlanProvider> = std::to_array<EnumText<PlanProvider>>({
    {PlanProvider::claude, "claude"},
    {PlanProvider::codex, "codex"},
    {PlanProvider::cursor, "cursor"},
    {PlanProvider::gemini, "gemini"},
    {PlanProvider::copilot, "copilot"},
});

/// The name for people; empty for a value that is no case. Valid for the life of the process.
[[nodiscard]] std::string_view displayName(PlanProvider provider);

/// Why the use of the plan cannot be read; none for the one whose use can. Valid for the life of the process.
[[nodiscard]] std::optional<std::string_view> unavailableNote(PlanProvider provider);

}  // namespace brindle
