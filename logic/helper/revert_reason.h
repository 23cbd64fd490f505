// Why sleep was switched back on.
//
// Used by the daemon's log, by the revert policy, and by the application, which shows it (logic/power has the labels).
#pragma once

#include "base/enum_text.h"

namespace brindle {

enum class RevertReason {
  /// The application: agents stopped working.
  agentsFinished,
  /// The application: the battery reached its floor.
  batteryFloor,
  /// The application: the heat limit was reached.
  thermal,
  /// A client switched sleep back on while it was disabled.
  turnedOff,
  /// The deadline of the disable was reached.
  maxDuration,
  /// The application is quitting.
  appQuit,
  /// A connection ended while sleep was disabled.
  connectionLost,
  /// Heartbeats stopped.
  heartbeatLost,
  /// The daemon started.
  helperStart,
  /// The daemon was told to terminate; only ever in the log.
  uninstall,
};

template <>
inline constexpr auto kEnumTexts<RevertReason> = std::to_array<EnumText<RevertReason>>({
    {RevertReason::agentsFinished, "agentsFinished"},
    {RevertReason::batteryFloor, "batteryFloor"},
    {RevertReason::thermal, "thermal"},
    {RevertReason::turnedOff, "turnedOff"},
    {RevertReason::maxDuration, "maxDuration"},
    {RevertReason::appQuit, "appQuit"},
    {RevertReason::connectionLost, "connectionLost"},
    {RevertReason::heartbeatLost, "heartbeatLost"},
    {RevertReason::helperStart, "helperStart"},
    {RevertReason::uninstall, "uninstall"},
});

}  // namespace brindle
