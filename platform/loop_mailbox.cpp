#include "platform/loop_mailbox.h"

#include <utility>

namespace brindle {

void LoopMailbox::post(EventLoop::Handler work) {
  const std::lock_guard lock(mutex_);
  if (loop_ != nullptr) loop_->post(std::move(work));
}

void LoopMailbox::close() {
  const std::lock_guard lock(mutex_);
  loop_ = nullptr;
}

}  // namespace brindle
