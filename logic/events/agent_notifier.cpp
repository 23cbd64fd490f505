#include "logic/events/agent_notifier.h"

#include <algorithm>
#include <compare>
#include <utility>

namespace brindle {
namespace {

/// By time of event, then by arrival. A time that is not a number has a place in this order too, because a sort whose
/// comparison contradicts itself is undefined.
bool earlier(const AgentNotifier::Pending& a, const AgentNotifier::Pending& b) {
  const auto order = std::strong_order(secondsSince1970(a.event.time), secondsSince1970(b.event.time));
  return order != 0 ? order < 0 : a.arrival < b.arrival;
}

}  // namespace

std::optional<AgentEvent> AgentNotifier::handle(AgentEvent event, const AgentNotifyRules& rules, Date now) {
  const std::string key = sessionKey(event);
  const AgentEventKind kind = event.kind;
  bool announce = false;
  switch (kind) {
    case AgentEventKind::finished:
      announce = finished(key, rules, now);
      break;
    case AgentEventKind::needsApproval:
      announce = approval(key, event, rules, now);
      break;
    case AgentEventKind::waiting:
      announce = waiting(key, rules, now);
      break;
  }
  if (!announce || !post(kind, key, now)) return std::nullopt;
  return event;
}

bool AgentNotifier::finished(const std::string& key, const AgentNotifyRules& rules, Date now) {
  pending_.erase(key);
  lastFinished_[key] = now;
  return rules.finished;
}

bool AgentNotifier::approval(const std::string& key, AgentEvent& event, const AgentNotifyRules& rules, Date now) {
  if (!rules.needsApproval) return false;
  if (!(rules.approvalDelay > Seconds{0})) return true;
  if (!pending_.contains(key)) {
    pending_.emplace(key, Pending{std::move(event), now + rules.approvalDelay, arrivals_++});
  }
  return false;
}

bool AgentNotifier::waiting(const std::string& key, const AgentNotifyRules& rules, Date now) const {
  if (!rules.finished) return false;
  const auto last = lastFinished_.find(key);
  return last == lastFinished_.end() || !(now - last->second < kAfterFinishWindow);
}

bool AgentNotifier::post(AgentEventKind kind, const std::string& key, Date now) {
  std::string postKey(textOf(kind));
  postKey += '|';
  postKey += key;
  const auto [entry, isNew] = posted_.try_emplace(std::move(postKey), now);
  if (!isNew) {
    if (now - entry->second < kRepeatWindow) return false;
    entry->second = now;
  }
  std::erase_if(posted_, [now](const auto& old) { return now - old.second >= kPostedRetention; });
  return true;
}

std::vector<AgentEvent> AgentNotifier::releaseDue(Date now, const AgentNotifyRules& rules,
                                                  const StillWanted& stillWanted) {
  if (!rules.needsApproval) {
    pending_.clear();
    return {};
  }
  std::vector<Pending> due;
  for (auto entry = pending_.begin(); entry != pending_.end();) {
    if (entry->second.due <= now) {
      due.push_back(std::move(entry->second));
      entry = pending_.erase(entry);
    } else {
      ++entry;
    }
  }
  std::sort(due.begin(), due.end(), earlier);
  std::vector<AgentEvent> events;
  for (Pending& request : due) {
    if (!stillWanted(request.event)) continue;
    if (post(request.event.kind, sessionKey(request.event), now)) events.push_back(std::move(request.event));
  }
  return events;
}

void AgentNotifier::cancel(const std::string& sessionKey) { pending_.erase(sessionKey); }

void AgentNotifier::forget(std::int32_t pid) {
  std::erase_if(pending_, [pid](const auto& entry) { return entry.second.event.pid == pid; });
}

}  // namespace brindle
