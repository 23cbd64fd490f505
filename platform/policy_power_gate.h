// The power gate of a living machine: asks the keep-awake policy about its battery and heat from time to time.
//
// Used by `brindle sleep off` and `brindle run`. One thread, the loop's.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "logic/power/keep_awake_rules.h"
#include "platform/power_gate.h"
#include "platform/power_reading.h"
#include "system/event_loop.h"

namespace brindle {

/// How often the machine is asked.
inline constexpr Seconds kPowerCheckInterval{15};

/// The pure half: the policy's answer as a verdict, and whether it is news.
class PowerJudge {
 public:
  /// The hold is let go at or below `batteryFloor` percent on battery, and when the machine gets hot.
  explicit PowerJudge(std::int64_t batteryFloor);

  /// The verdict when it differs from the one before in whether a hold is allowed; the first one always.
  [[nodiscard]] std::optional<PowerVerdict> judge(const PowerReading& reading);

 private:
  KeepAwakeRules rules_;
  KeepAwakePolicy policy_;
  std::optional<bool> told_;
};

class PolicyPowerGate : public PowerGate {
 public:
  using Read = std::function<PowerReading()>;
  /// The loop outlives the gate. `interval` is another one only in tests.
  PolicyPowerGate(EventLoop& loop, std::int64_t batteryFloor, Read read, Seconds interval = kPowerCheckInterval);

  void watch(std::function<void(const PowerVerdict&)> changed) override;

 private:
  void check();

  EventLoop& loop_;
  PowerJudge judge_;
  Read read_;
  Seconds interval_;
  std::function<void(const PowerVerdict&)> changed_;
  std::optional<EventSource> timer_;
};

}  // namespace brindle
