#include "platform/process_stopper.h"

#include <unistd.h>

#include <csignal>
#include <optional>

#include "platform/process_handle.h"

namespace brindle {
namespace {

class Round {
 public:
  explicit Round(const std::vector<StopTarget>& targets) : targets_(targets), fates_(targets.size(), StopFate::gone) {
    for (std::size_t at = 0; at < targets.size(); ++at) {
      handles_.emplace_back();
      if (targets[at].pid == ::getpid()) {
        fates_[at] = StopFate::refused;
        continue;
      }
      auto handle = ProcessHandle::open({targets[at].pid, targets[at].startTime});
      if (handle) {
        handles_[at].emplace(std::move(*handle));
        fates_[at] = StopFate::running;
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
