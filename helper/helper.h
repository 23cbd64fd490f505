// The daemon itself: it switches sleep off for whoever asks, and makes sure that it always comes back on.
//
// One object for the life of the process, made by the program's main and called by the platform's service. It owns
// the revert policy, the set of live connections and the moment since which there is none; all three are touched on
// the queue alone. It trusts its callers: the service admits only peers that may ask.
//
// Order of use: create, start() once, then the service's calls in any order from any thread. Nothing persists: every
// start begins by switching sleep back on.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <set>

#include "base/date.h"
#include "helper/connection_id.h"
#include "helper/helper_log.h"
#include "helper/process_exit.h"
#include "helper/serial_queue.h"
#include "helper/sleep_switch.h"
#include "logic/helper/helper_reply.h"
#include "logic/helper/helper_revert_policy.h"
#include "logic/helper/sleep_request.h"

namespace brindle {

/// The daemon ends itself when it has had no connection, and sleep was not disabled, for strictly longer than this.
inline constexpr Seconds kIdleExitDelay{120};

/// What the platform gives to Helper. Everything outlives it; `now` reads the wall clock as OnwardClock tells it, and
/// is called on the queue, but for the first time before start().
struct HelperSeams {
  SerialQueue& queue;
  SleepSwitch& sleepSwitch;
  HelperLog& log;
  ProcessExit& exit;
  std::function<Date()> now;
};

class Helper : public std::enable_shared_from_this<Helper> {
 public:
  /// Nothing happens before start(); only the idle time begins to count.
  [[nodiscard]] static std::shared_ptr<Helper> create(HelperSeams seams);

  /// Switches sleep back on, whatever a previous instance left behind, and starts the timer that keeps the limits.
  /// When it returns, sleep is on, so the service may take clients. A switch that fails is only logged. False when
  /// there is no timer: such a daemon must not serve, because it could leave sleep off for ever.
  [[nodiscard]] bool start();

  /// Counts a connection from now on. Returns when it is counted. Not from the queue.
  void accept(ConnectionId connection);
  /// The connection is gone: while sleep is disabled, whoever disabled it, sleep comes back on. A connection that is
  /// not counted, or has ended already, changes nothing. Later, on the queue.
  void connectionEnded(ConnectionId connection);

  // The three requests. Each runs later on the queue, in order of arrival, and calls its reply there exactly once.

  void setSleepDisabled(SleepRequest request, std::function<void(SleepReply)> reply);
  /// Replies whether sleep is disabled; false tells a holder that its hold has ended.
  void heartbeat(std::function<void(bool sleepDisabled)> reply);
  void status(std::function<void(HelperStatus)> reply);

  /// SIGTERM: switches sleep back on, then ends the process. Not from the queue.
  void terminate();

 private:
  explicit Helper(HelperSeams seams);
  void tick();
  void end(ConnectionId connection);
  [[nodiscard]] SleepReply answer(const SleepRequest& request);
  [[nodiscard]] SleepReply carryOut(PmsetCommand command);
  void restoreSleep(RevertReason reason);

  HelperSeams seams_;
  HelperRevertPolicy policy_;
  std::set<ConnectionId> connections_;
  Date idleSince_;
  std::unique_ptr<QueueTimer> timer_;
};

}  // namespace brindle
