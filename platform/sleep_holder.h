// Keeps sleep off for a while: drives a SleepHold with a helper client, a timer and the power gate.
//
// Used by `brindle sleep off`, `brindle run` and `brindle watch`. One thread, the loop's. Destroying the holder
// together with its client lets go too: the helper sees the connection end.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/helper_client.h"
#include "platform/hold_timer.h"
#include "platform/power_gate.h"
#include "platform/sleep_hold.h"

namespace brindle {

/// Something the user may want to know; told once for each change.
struct HoldNews {
  /// The new phase: held, waiting, paused or ended.
  HoldPhase phase = HoldPhase::idle;
  /// Only with ended.
  std::optional<HoldEnd> end;
  /// Why: the helper's or the gate's own words; the helper's answer with held. May be empty.
  std::string text;
  /// What kept the helper from answering, if something did.
  std::optional<HelperProblemKind> problem;

  bool operator==(const HoldNews&) const = default;
};

class SleepHolder {
 public:
  struct Parts {
    HelperClient& client;
    HoldTimer& timer;
    PowerGate& gate;
  };
  /// The parts outlive the holder, and it is not moved: they call it back.
  SleepHolder(Parts parts, std::function<void(const HoldNews&)> told);
  SleepHolder(const SleepHolder&) = delete;
  SleepHolder& operator=(const SleepHolder&) = delete;
  ~SleepHolder();

  /// Begins to hold for `duration`. Call once. What comes of it is told; only `paused` from inside this call.
  void hold(Seconds duration);
  /// Lets go; `ended` is told when that is done, at the latest after kLetGoPatience. May be told from inside.
  void letGo();

  [[nodiscard]] const SleepHold& state() const { return hold_; }
  [[nodiscard]] Seconds timeLeft() const { return hold_.timeLeft(parts_.timer.now()); }

 private:
  void act(const HoldAction& action);
  void settle();
  void verdict(const PowerVerdict& verdict);
  [[nodiscard]] HoldNews news() const;

  Parts parts_;
  std::function<void(const HoldNews&)> told_;
  SleepHold hold_;
  HoldPhase toldPhase_ = HoldPhase::idle;
  std::string answer_;
  PowerVerdict verdict_;
  std::shared_ptr<int> alive_ = std::make_shared<int>();
};

}  // namespace brindle
