// What a process is to the person who runs it: an agent, or a place where agents are run from.
//
// Set by whoever takes the snapshot; read by session building, protections and reports.
#pragma once

#include "base/enum_text.h"

namespace brindle {

/// The raw values are the JSON values wherever a role is written.
enum class ProcessRole { agent, ide, terminal };

template <>
inline constexpr auto kEnumTexts<ProcessRole> = std::to_array<EnumText<ProcessRole>>({
    {ProcessRole::agent, "agent"},
    {ProcessRole::ide, "ide"},
    {ProcessRole::terminal, "terminal"},
});

}  // namespace brindle
