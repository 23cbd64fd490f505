#include "platform/bus_problem.h"

#include <algorithm>
#include <array>

#include "logic/helper/helper_identity.h"

namespace brindle {

HelperProblem helperMissingOnBus() {
  return {HelperProblemKind::notInstalled, "nothing provides " + std::string(HelperIdentity::kBusName) +
                                               " on the system bus; install it with 'sudo cmake --install "
                                               "build/release' and 'sudo systemctl reload dbus'"};
}

HelperProblem busProblem(std::string_view name, std::string_view text) {
  // The bus's own words for a name without owner, and systemd's for a service file whose unit is not there.
  constexpr auto kMissing = std::to_array<std::string_view>(
      {"org.freedesktop.DBus.Error.ServiceUnknown", "org.freedesktop.DBus.Error.NameHasNoOwner",
       "org.freedesktop.DBus.Error.Spawn.ServiceNotFound", "org.freedesktop.systemd1.NoSuchUnit"});
  constexpr auto kRefusals = std::to_array<std::string_view>(
      {"org.freedesktop.DBus.Error.AccessDenied", "org.freedesktop.DBus.Error.AuthFailed",
       "org.freedesktop.DBus.Error.InteractiveAuthorizationRequired",
       "org.freedesktop.systemd1.UnitMasked"});  // masked: somebody does not want it
  if (std::ranges::find(kMissing, name) != kMissing.end()) return helperMissingOnBus();
  const bool refused = std::ranges::find(kRefusals, name) != kRefusals.end();
  return {refused ? HelperProblemKind::refused : HelperProblemKind::unreachable,
          std::string(text.empty() ? name : text)};
}

}  // namespace brindle
