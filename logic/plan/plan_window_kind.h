// The two rolling windows in which an agent plan meters its use.
//
// Used by the parser of usage documents, the forecast, the alerts and their texts.
#pragma once

#include <string_view>

#include "base/date.h"
#include "base/enum_text.h"

namespace brindle {

enum class PlanWindowKind { session, week };

template <>
inline constexpr auto kEnumTexts<PlanWindowKind> = std::to_array<EnumText<PlanWindowKind>>({
    {PlanWindowKind::session, "session"},
    {PlanWindowKind::week, "week"},
});

/// 5 hours or 7 days; 0 for a value that is no case.
[[nodiscard]] Seconds length(PlanWindowKind kind);

/// "this 5 hour window" or "this week"; empty for a value that is no case. Valid for the life of the process.
[[nodiscard]] std::string_view label(PlanWindowKind kind);

}  // namespace brindle
