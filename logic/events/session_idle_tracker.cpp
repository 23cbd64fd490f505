#include "logic/events/session_idle_tracker.h"

#include <utility>

namespace brindle {

std::vector<std::string> SessionIdleTracker::update(std::span<const Sample> samples, Date now, Seconds idleAfter) {
  std::vector<std::string> idle;
  States sampled;
  for (const Sample& sample : samples) {
    auto entry = sampled.find(sample.key);
    if (entry == sampled.end()) {
      // Moving the node over leaves behind exactly the keys that this pass does not mention.
      auto node = states_.extract(sample.key);
      entry =
          node ? sampled.insert(std::move(node)).position : sampled.emplace(sample.key, State{.firstSeen = now}).first;
    }
    State& state = entry->second;
    if (!sample.forcedQuiet && sample.cpu >= kBusyThreshold) {
      state.lastBusy = now;
      state.everBusy = true;
      state.reportedIdle = false;
    } else if (state.everBusy && !state.reportedIdle && state.lastBusy && now - *state.lastBusy >= idleAfter) {
      state.reportedIdle = true;
      idle.push_back(sample.key);
    }
  }
  states_ = std::move(sampled);
  return idle;
}

bool SessionIdleTracker::recentlyActive(std::string_view key, Date now, Seconds within) const {
  const auto entry = states_.find(key);
  if (entry == states_.end()) return false;
  return now - entry->second.lastBusy.value_or(entry->second.firstSeen) < within;
}

}  // namespace brindle
