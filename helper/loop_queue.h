// The daemon's queue on a system where one event loop on one thread does everything.
//
// Only the loop's thread uses it, so what is to run "synchronously on the queue" simply runs. The loop outlives it.
#pragma once

#include "helper/serial_queue.h"
#include "system/event_loop.h"

namespace brindle {

class LoopQueue final : public SerialQueue {
 public:
  explicit LoopQueue(EventLoop& loop) : loop_(loop) {}

  void sync(const std::function<void()>& work) override { work(); }
  void async(std::function<void()> work) override { loop_.post(std::move(work)); }
  [[nodiscard]] std::unique_ptr<QueueTimer> repeat(Seconds interval, std::function<void()> work) override;

 private:
  EventLoop& loop_;
};

}  // namespace brindle
