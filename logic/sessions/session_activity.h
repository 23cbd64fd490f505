// What an agent session is doing, as far as its CPU use tells.
//
// Derived by AgentSessionBuilder; read by the reports and the widget.
#pragma once

#include "base/enum_text.h"

namespace brindle {

/// The raw values are the JSON values wherever an activity is written.
enum class SessionActivity { working, waiting, idle };

template <>
inline constexpr auto kEnumTexts<SessionActivity> = std::to_array<EnumText<SessionActivity>>({
    {SessionActivity::working, "working"},
    {SessionActivity::waiting, "waiting"},
    {SessionActivity::idle, "idle"},
});

}  // namespace brindle
