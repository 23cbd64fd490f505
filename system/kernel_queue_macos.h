// The kernel's event queue behind an EventLoop here, and what waits in it.
//
// Used by event_loop_macos.mm alone. One thread, the loop's; only wake() may be called from any.
#pragma once

#include <cstdint>
#include <set>
#include <utility>

#include "base/date.h"
#include "base/descriptor.h"
#include "system/event_loop.h"

namespace brindle {

/// One filter of the queue, as kevent(2) names it.
struct QueueFilter {
  std::uintptr_t ident = 0;
  std::int16_t kind = 0;
  unsigned int notes = 0;
  std::int64_t data = 0;
  unsigned short flags = 0;
};

class KernelQueue;

/// Something that waits in the queue; destroying it takes it out. Events are taken one at a time, so none can name a
/// source that is gone.
class QueueSource : public EventSource::Body {
 public:
  explicit QueueSource(KernelQueue& queue) : queue_(queue) {}
  ~QueueSource() override;
  QueueSource(const QueueSource&) = delete;
  QueueSource& operator=(const QueueSource&) = delete;

  /// Begins to wait for `filter`. EBUSY when another source waits for the same. Call once, again only after a failure.
  [[nodiscard]] Outcome enter(const QueueFilter& filter, const char* doing);
  /// Its event came. May destroy this source.
  virtual void happened() = 0;

 private:
  KernelQueue& queue_;
  QueueFilter filter_;
  bool entered_ = false;
};

class KernelQueue {
 public:
  [[nodiscard]] Outcome open();
  /// Waits for one event and serves it; answers false when it is a wake-up, or nothing came after all.
  [[nodiscard]] Result<bool> serveOne();
  /// Makes serveOne() return, now or the next time. From any thread.
  void wake() const;
  /// A filter that comes once, or again and again, after `span` of the clock that goes on while the machine sleeps.
  /// Not a number and anything below a nanosecond count as one nanosecond.
  [[nodiscard]] QueueFilter timer(Seconds span, bool once);

 private:
  friend class QueueSource;
  [[nodiscard]] int change(const QueueFilter& filter, unsigned short action, QueueSource* source) const;

  Descriptor queue_;
  std::uintptr_t timers_ = 0;
  /// What sources wait for; the queue itself would silently replace one source of the same by another.
  std::set<std::pair<std::int16_t, std::uintptr_t>> taken_;
};

}  // namespace brindle
