// What really switches the machine's sleep off and back on.
//
// Helper runs it on its queue and blocks until it is done. Implementations: PmsetRunner, LogindSwitch, and a scripted
// one in tests. Each writes the log line of its own deed, so that the log never shows a deed that was not done.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "logic/helper/pmset_command.h"
#include "logic/helper/revert_reason.h"

namespace brindle {

class SleepSwitch {
 public:
  SleepSwitch() = default;
  SleepSwitch(const SleepSwitch&) = delete;
  SleepSwitch& operator=(const SleepSwitch&) = delete;
  virtual ~SleepSwitch() = default;

  /// Carries the command out and logs it with its reason, "request" for none. True exactly when it succeeded. Safe to
  /// repeat in any state.
  [[nodiscard]] virtual bool run(PmsetCommand command, std::optional<RevertReason> reason) = 0;
  /// What the failure reply calls it: "pmset", "logind". Valid as long as the switch.
  [[nodiscard]] virtual std::string_view name() const = 0;
};

/// The log line of one run: `deed` + " exit 0 reason helperStart"; no reason reads "request".
[[nodiscard]] std::string switchLogLine(std::string_view deed, int exitStatus, std::optional<RevertReason> reason);

}  // namespace brindle
