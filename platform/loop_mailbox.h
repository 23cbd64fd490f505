// Where answers that arrive on other threads are left for an event loop.
//
// Used by adapters of interfaces that call back on threads of their own. Shared by the adapter, which closes it when
// it goes, and by every callback that is still out: one that comes too late finds it closed and is dropped, even when
// the loop is gone by then. post() may be called from any thread; all else on the loop's.
#pragma once

#include <mutex>

#include "system/event_loop.h"

namespace brindle {

class LoopMailbox {
 public:
  /// The loop outlives the mailbox's open time.
  explicit LoopMailbox(EventLoop& loop) : loop_(&loop) {}
  LoopMailbox(const LoopMailbox&) = delete;
  LoopMailbox& operator=(const LoopMailbox&) = delete;

  /// Runs `work` on the loop after everything posted before it; does nothing once closed. What `work` owns may be
  /// destroyed on the calling thread.
  void post(EventLoop::Handler work);

  /// From now on the loop is not touched. Work posted earlier may still run.
  void close();

 private:
  std::mutex mutex_;
  EventLoop* loop_;
};

}  // namespace brindle
