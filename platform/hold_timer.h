// The one alarm of a hold, and the clock it goes by.
//
// Used by SleepHolder; tests turn the clock by hand. One thread, the loop's.
#pragma once

#include <functional>
#include <optional>

#include "base/date.h"
#include "system/event_loop.h"

namespace brindle {

class HoldTimer {
 public:
  virtual ~HoldTimer() = default;
  /// The boot clock.
  [[nodiscard]] virtual Seconds now() const = 0;
  /// Calls `alarm` once at `moment` of the boot clock or later, never from inside this call, instead of any alarm
  /// set before; with none, never.
  virtual void setAlarm(std::optional<Seconds> moment, std::function<void()> alarm) = 0;
};

/// The timer of a running program. The loop outlives it.
class LoopHoldTimer : public HoldTimer {
 public:
  explicit LoopHoldTimer(EventLoop& loop) : loop_(loop) {}
  [[nodiscard]] Seconds now() const override;
  void setAlarm(std::optional<Seconds> moment, std::function<void()> alarm) override;

 private:
  EventLoop& loop_;
  EventSource source_;
};

}  // namespace brindle
