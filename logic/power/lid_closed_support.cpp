#include "logic/power/lid_closed_support.h"

namespace brindle {

LidClosedSupport evaluateLidClosedSupport(LidSurroundings surroundings) {
  if (!surroundings.hasLid) return LidClosedSupport::noLid;
  if (surroundings.onPower) {
    return surroundings.hasDisplay ? LidClosedSupport::works : LidClosedSupport::needsDisplay;
  }
  return surroundings.hasDisplay ? LidClosedSupport::needsPower : LidClosedSupport::needsPowerAndDisplay;
}

std::string_view text(LidClosedSupport support) {
  switch (support) {
    case LidClosedSupport::works:
      return "Works now: on power with an external display.";
    case LidClosedSupport::needsPower:
      return "Needs power. On battery a closed lid sleeps the Mac.";
    case LidClosedSupport::needsDisplay:
      return "Needs an external display. Without one a closed lid sleeps the Mac.";
    case LidClosedSupport::needsPowerAndDisplay:
      return "Needs power and an external display. Otherwise a closed lid sleeps the Mac.";
    case LidClosedSupport::noLid:
      return "This Mac has no lid.";
  }
  return {};
}

}  // namespace brindle
