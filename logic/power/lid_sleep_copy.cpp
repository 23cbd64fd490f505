#include "logic/power/lid_sleep_copy.h"

#include <cmath>

#include "base/whole_number.h"

namespace brindle::LidSleepCopy {
namespace {

std::string readyDetail(Shown shown, Seconds maxDuration) {
  const std::string hours = std::to_string(wholeNumber(std::round(maxDuration.count() / 3600)));
  if (shown.active) {
    return "Sleep is disabled, so a closed lid doesn't sleep the Mac. Turns back on when agents finish, at the battery "
           "floor or heat limit, when Brindle quits, or after " +
           hours + " h.";
  }
  if (!shown.enabled) return "Turn it on to keep the Mac awake with the lid closed while agents work.";
  return "Disables sleep only while every AI agent you run is working, for " + hours + " h at most.";
}

}  // namespace

std::string_view toggleLabel(bool on) { return on ? "On" : "Off"; }

std::string detail(HelperInstallState state, Shown shown, Seconds maxDuration) {
  switch (state) {
    case HelperInstallState::notInstalled:
      return "Install the helper to keep the Mac awake with the lid closed, on battery too. macOS asks an admin to "
             "allow "
             "it once.";
    case HelperInstallState::needsApproval:
      return "Allow Brindle in System Settings > General > Login Items, then come back.";
    case HelperInstallState::unavailable:
      return "This build has no helper. Install Brindle from the DMG to use it.";
    case HelperInstallState::ready:
      return readyDetail(shown, maxDuration);
  }
  return {};
}

}  // namespace brindle::LidSleepCopy
