// What the lid-sleep feature says to people.
//
// Used by the application. Pure functions; texts are English whatever the locale.
#pragma once

#include <string>
#include <string_view>

#include "base/date.h"
#include "logic/helper/helper_install_state.h"

namespace brindle::LidSleepCopy {

/// How the feature stands.
struct Shown {
  /// The user's switch.
  bool enabled = false;
  /// Sleep is disabled right now.
  bool active = false;
};

/// "On" or "Off".
[[nodiscard]] std::string_view toggleLabel(bool on);

/// The sentence below the switch. `maxDuration` is shown in whole hours, halves rounded away from zero.
[[nodiscard]] std::string detail(HelperInstallState state, Shown shown, Seconds maxDuration);

}  // namespace brindle::LidSleepCopy
