#include "platform/process_stopper.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <optional>

#include "platform/process_handle.h"

namespace brindle {
namespace {

/// Descriptors for everything but the handles: the streams, and what is open for a moment while a handle is opened.
constexpr std::size_t kOtherDescriptors = 32;

/// How many handles can be open at once. The usual limit of 1,024 descriptors is raised for more, since an agent may
/// have started more processes than that.
std::size_t handlesAllowed(std::size_t wanted) {
  rlimit limit = {};
  if (::getrlimit(RLIMIT_NOFILE, &limit) != 0) return wanted;
  const rlim_t needed = wanted + kOtherDescriptors;
  if (limit.rlim_cur < needed) {
    const rlimit raised = {.rlim_cur = std::min(needed, limit.rlim_max), .rlim_max = limit.rlim_max};
    if (::setrlimit(RLIMIT_NOFILE, &raised) == 0) limit = raised;
  }
  if (limit.rlim_cur >= needed) return wanted;
  return limit.rlim_cur > kOtherDescriptors ? static_cast<std::size_t>(limit.rlim_cur) - kOtherDescriptors : 0;
}

class Round {
 public:
  explicit Round(const std::vector<StopTarget>& targets)
      : targets_(targets), handles_(targets.size()), fates_(targets.size(), StopFate::refused) {
    const std::size_t allowed = handlesAllowed(targets.size());
    for (std::size_t at = 0; at < allowed; ++at) {
      if (targets[at].pid == ::getpid()) continue;
      auto handle = ProcessHandle::open({targets[at].pid, targets[at].startTime});
      if (handle) {
        handles_[at].emplace(std::move(*handle));
        fates_[at] = StopFate::running;
      } else if (handle.error().code == ESRCH) {
        fates_[at] = StopFate::gone;
      }
    }
  }

  /// Signals those that run, only the first ones or all, and waits for all that were signalled.
  void signal(int number, bool onlyFirst, Seconds patience) {
    std::vector<const ProcessHandle*> signalled;
    for (std::size_t at = 0; at < targets_.size(); ++at) {
      if (fates_[at] != StopFate::running || (onlyFirst && !targets_[at].first)) continue;
      if (handles_[at]->hasEnded()) continue;
      if (handles_[at]->signal(number)) {
        signalled.push_back(&*handles_[at]);
      } else if (!handles_[at]->hasEnded()) {
        fates_[at] = StopFate::refused;
      }
    }
    if (!signalled.empty()) (void)ProcessHandle::waitForAll(signalled, patience);
  }

  void settle() {
    for (std::size_t at = 0; at < targets_.size(); ++at) {
      if (fates_[at] == StopFate::running && handles_[at]->hasEnded()) fates_[at] = StopFate::stopped;
    }
  }

  [[nodiscard]] bool anyRuns() {
    settle();
    for (const StopFate fate : fates_) {
      if (fate == StopFate::running) return true;
    }
    return false;
  }

  [[nodiscard]] const std::vector<StopFate>& fates() const { return fates_; }

 private:
  const std::vector<StopTarget>& targets_;
  std::vector<std::optional<ProcessHandle>> handles_;
  std::vector<StopFate> fates_;
};

}  // namespace

std::vector<StopFate> stopProcesses(const std::vector<StopTarget>& targets, const StopManner& manner) {
  Round round(targets);
  round.signal(SIGTERM, true, manner.patience);
  if (round.anyRuns()) round.signal(SIGTERM, false, manner.patience);
  if (manner.force && round.anyRuns()) round.signal(SIGKILL, false, manner.patience);
  round.settle();
  return round.fates();
}

}  // namespace brindle
