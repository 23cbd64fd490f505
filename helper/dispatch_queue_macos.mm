#include "helper/dispatch_queue_macos.h"

#include <cmath>
#include <utility>

#include "logic/helper/helper_identity.h"

namespace brindle {
namespace {

class DispatchTimer final : public QueueTimer {
 public:
  explicit DispatchTimer(dispatch_source_t source) : source_(source) {}
  ~DispatchTimer() override { dispatch_source_cancel(source_); }

 private:
  dispatch_source_t source_;
};

}  // namespace

DispatchQueue::DispatchQueue()
    : queue_(dispatch_queue_create(HelperIdentity::kQueueLabel.data(), DISPATCH_QUEUE_SERIAL)) {}

void DispatchQueue::sync(const std::function<void()>& work) {
  const auto* function = &work;
  dispatch_sync(queue_, ^{
    (*function)();
  });
}

void DispatchQueue::async(std::function<void()> work) {
  const auto function = std::move(work);
  dispatch_async(queue_, ^{
    function();
  });
}

std::unique_ptr<QueueTimer> DispatchQueue::repeat(Seconds interval, std::function<void()> work) {
  dispatch_source_t source = dispatch_source_create(DISPATCH_SOURCE_TYPE_TIMER, 0, 0, queue_);
  if (source == nullptr) return nullptr;
  const auto nanoseconds =
      static_cast<std::uint64_t>(std::llround(interval.count() * static_cast<double>(NSEC_PER_SEC)));
  dispatch_source_set_timer(source, dispatch_time(DISPATCH_TIME_NOW, static_cast<std::int64_t>(nanoseconds)),
                            nanoseconds, 0);
  const auto function = std::move(work);
  dispatch_source_set_event_handler(source, ^{
    function();
  });
  dispatch_resume(source);
  return std::make_unique<DispatchTimer>(source);
}

}  // namespace brindle
