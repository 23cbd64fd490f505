#include "helper/loop_queue.h"

#include <utility>

namespace brindle {
namespace {

class LoopTimer final : public QueueTimer {
 public:
  explicit LoopTimer(EventSource source) : source_(std::move(source)) {}

 private:
  EventSource source_;
};

}  // namespace

std::unique_ptr<QueueTimer> LoopQueue::repeat(Seconds interval, std::function<void()> work) {
  auto source = loop_.every(interval, std::move(work));
  if (!source) return nullptr;
  return std::make_unique<LoopTimer>(std::move(*source));
}

}  // namespace brindle
