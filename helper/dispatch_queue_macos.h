// The daemon's queue as a serial dispatch queue with a dispatch timer.
//
// Made by main, lives as long as the process. Any thread may hand work in.
#pragma once

#include <dispatch/dispatch.h>

#include "helper/serial_queue.h"

namespace brindle {

class DispatchQueue final : public SerialQueue {
 public:
  /// A queue of default quality of service without a target, under HelperIdentity::kQueueLabel.
  DispatchQueue();

  void sync(const std::function<void()>& work) override;
  void async(std::function<void()> work) override;
  /// No leeway. The timer stands still while the machine sleeps: a late call is what the queue's user has to expect.
  [[nodiscard]] std::unique_ptr<QueueTimer> repeat(Seconds interval, std::function<void()> work) override;

 private:
  dispatch_queue_t queue_;
};

}  // namespace brindle
