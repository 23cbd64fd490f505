// What stands behind an EventLoop here: an sd-event loop and the work posted to it.
//
// Used only by the files of this folder that attach something else to the loop. The mutex guards `posted`; all else
// belongs to the loop's thread.
#pragma once

#include <systemd/sd-event.h>

#include <deque>
#include <mutex>

#include "base/descriptor.h"
#include "system/event_loop.h"

namespace brindle {

struct EventLoop::Native {
  Native() = default;
  Native(const Native&) = delete;
  Native& operator=(const Native&) = delete;
  ~Native() {
    sd_event_source_disable_unref(wakeSource);
    sd_event_unref(event);
  }

  sd_event* event = nullptr;
  /// An eventfd that is readable while work may be waiting.
  Descriptor wake;
  sd_event_source* wakeSource = nullptr;
  std::mutex mutex;
  std::deque<Handler> posted;
  bool exiting = false;
};

}  // namespace brindle
