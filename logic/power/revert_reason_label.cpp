#include "logic/power/revert_reason_label.h"

namespace brindle {

std::string_view label(RevertReason reason) {
  switch (reason) {
    case RevertReason::agentsFinished:
      return "Agents finished";
    case RevertReason::batteryFloor:
      return "Battery floor";
    case RevertReason::thermal:
      return "Thermal limit";
    case RevertReason::turnedOff:
      return "Turned off";
    case RevertReason::maxDuration:
      return "Max duration reached";
    case RevertReason::appQuit:
      return "Brindle quit";
    case RevertReason::connectionLost:
      return "Brindle disconnected";
    case RevertReason::heartbeatLost:
      return "No heartbeat from Brindle";
    case RevertReason::helperStart:
      return "Helper started";
    case RevertReason::uninstall:
      return "Helper uninstalled";
  }
  return {};
}

}  // namespace brindle
