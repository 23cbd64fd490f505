// Whether the machine can stay awake with its lid closed by what is plugged into it alone.
//
// Used by the application's settings screen and by the doctor. Pure.
#pragma once

#include <string_view>

#include "base/enum_text.h"

namespace brindle {

enum class LidClosedSupport { works, needsPower, needsDisplay, needsPowerAndDisplay, noLid };

template <>
inline constexpr auto kEnumTexts<LidClosedSupport> = std::to_array<EnumText<LidClosedSupport>>({
    {LidClosedSupport::works, "works"},
    {LidClosedSupport::needsPower, "needsPower"},
    {LidClosedSupport::needsDisplay, "needsDisplay"},
    {LidClosedSupport::needsPowerAndDisplay, "needsPowerAndDisplay"},
    {LidClosedSupport::noLid, "noLid"},
});

/// What the support depends on.
struct LidSurroundings {
  bool hasLid = false;
  bool onPower = false;
  /// An external display is connected.
  bool hasDisplay = false;
};

[[nodiscard]] LidClosedSupport evaluateLidClosedSupport(LidSurroundings surroundings);

/// The sentence for people; empty for a value that is no case. Valid for the life of the process.
[[nodiscard]] std::string_view text(LidClosedSupport support);

}  // namespace brindle
