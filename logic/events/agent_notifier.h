// Filters, delays and de-duplicates agent events: which of them to announce, and when.
//
// Owned by the application, which hands it each drained event and asks for delayed ones every so often, and which
// posts what comes back. A plain value without clock or lock; whoever shares one serialises all access.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/date.h"
#include "logic/events/agent_event.h"
#include "logic/events/agent_notify_rules.h"

namespace brindle {

class AgentNotifier {
 public:
  /// The same kind for the same session is not announced again before this has passed.
  static constexpr Seconds kRepeatWindow{10};
  /// A wait sooner than this after the session's last finished turn is not announced: the turn's end covered it.
  static constexpr Seconds kAfterFinishWindow{600};
  /// What was announced this long ago, inclusive, is forgotten.
  static constexpr Seconds kPostedRetention{3600};

  struct Pending {
    AgentEvent event;
    /// From this date on, inclusive, the request is announced.
    Date due{};
    /// Counts up with each request stored, so that requests of equal time keep the order in which they came.
    std::uint64_t arrival = 0;

    bool operator==(const Pending&) const = default;
  };

  /// Asked once for each due request: whether announcing it still makes sense.
  using StillWanted = std::function<bool(const AgentEvent&)>;

  /// Takes one drained event; the same event when it is to be announced now. A finished turn takes back the session's
  /// pending approval request; an approval request waits for rules.approvalDelay (at once when that is not positive),
  /// and while one waits, further ones of its session are dropped; a wait counts as the end of a turn.
  [[nodiscard]] std::optional<AgentEvent> handle(AgentEvent event, const AgentNotifyRules& rules, Date now);

  /// Takes out the requests that are due and returns those to announce, by time of event. Forgets every pending
  /// request when the rules have switched approval requests off.
  [[nodiscard]] std::vector<AgentEvent> releaseDue(Date now, const AgentNotifyRules& rules,
                                                   const StillWanted& stillWanted);

  /// Forgets the pending request of the session.
  void cancel(const std::string& sessionKey);

  /// Forgets every pending request that carries that pid; requests without a pid stay.
  void forget(std::int32_t pid);

  /// Approval requests that wait for their delay to pass, by session key.
  [[nodiscard]] const std::map<std::string, Pending>& pending() const { return pending_; }
  /// When each kind was last announced for each session, by "kind|session key".
  [[nodiscard]] const std::map<std::string, Date>& posted() const { return posted_; }
  /// When each session last finished a turn, by session key.
  [[nodiscard]] const std::map<std::string, Date>& lastFinished() const { return lastFinished_; }

 private:
  [[nodiscard]] bool finished(const std::string& key, const AgentNotifyRules& rules, Date now);
  [[nodiscard]] bool approval(const std::string& key, AgentEvent& event, const AgentNotifyRules& rules, Date now);
  [[nodiscard]] bool waiting(const std::string& key, const AgentNotifyRules& rules, Date now) const;
  /// Records the announcement; false when the same one was made within the repeat window.
  [[nodiscard]] bool post(AgentEventKind kind, const std::string& key, Date now);

  std::map<std::string, Pending> pending_;
  std::map<std::string, Date> posted_;
  std::map<std::string, Date> lastFinished_;
  std::uint64_t arrivals_ = 0;
};

}  // namespace brindle
