// The one context in which the daemon's state is read and written.
//
// Implemented over the platform's queue or loop, and by a hand-cranked one in tests. Work runs one piece at a time, in
// the order in which it was handed in. No piece may throw.
#pragma once

#include <functional>
#include <memory>

#include "base/date.h"

namespace brindle {

/// A repeating timer; destroying it ends its calls.
class QueueTimer {
 public:
  QueueTimer() = default;
  QueueTimer(const QueueTimer&) = delete;
  QueueTimer& operator=(const QueueTimer&) = delete;
  virtual ~QueueTimer() = default;
};

class SerialQueue {
 public:
  SerialQueue() = default;
  SerialQueue(const SerialQueue&) = delete;
  SerialQueue& operator=(const SerialQueue&) = delete;
  virtual ~SerialQueue() = default;

  /// Runs `work` on the queue and returns when it is done. Never called from the queue itself.
  virtual void sync(const std::function<void()>& work) = 0;
  /// Runs `work` on the queue later. From any thread that the platform calls us on.
  virtual void async(std::function<void()> work) = 0;
  /// Runs `work` on the queue every `interval`, the first time one interval from now. Null when the system cannot
  /// give a timer.
  [[nodiscard]] virtual std::unique_ptr<QueueTimer> repeat(Seconds interval, std::function<void()> work) = 0;
};

}  // namespace brindle
