// The sleep switch of Linux: one inhibitor lock of the login manager, held while sleep is disabled.
//
// Used on Helper's queue; the Linux watch calls recheck() on the same thread. The held descriptor is the truth: when
// the process dies in whatever way, the kernel closes it and sleep is on again. The lock can also be lost on the
// other side, when the login manager restarts without its state, so recheck() compares with its list.
#pragma once

#include <string>

#include "base/descriptor.h"
#include "helper/helper_log.h"
#include "helper/inhibitor.h"
#include "helper/sleep_switch.h"

namespace brindle {

class LogindSwitch final : public SleepSwitch {
 public:
  /// Both outlive the switch.
  LogindSwitch(Inhibitor& inhibitor, HelperLog& log);

  /// Disabling takes the lock, in place of one that is held already. Restoring closes it, and cannot fail.
  [[nodiscard]] bool run(PmsetCommand command, std::optional<RevertReason> reason) override;
  [[nodiscard]] std::string_view name() const override { return "logind"; }

  /// The login manager has come up or the machine has woken: takes the lock again when it should be held but is not
  /// listed. Nothing while sleep is not disabled.
  void recheck();
  /// Whether the last recheck() could not make sure of a lock that should be held; then it is worth repeating.
  [[nodiscard]] bool needsRecheck() const { return needsRecheck_; }

  /// The lock: it stops a closed lid as well as idle and requested suspends, and it blocks rather than delays.
  [[nodiscard]] static const InhibitorRequest& lock();
  /// The call that takes it, for the log: `Inhibit("sleep:handle-lid-switch", "Brindle", …, "block")`.
  [[nodiscard]] static std::string callText();

 private:
  [[nodiscard]] bool takeLock(std::optional<RevertReason> reason);

  Inhibitor& inhibitor_;
  HelperLog& log_;
  Descriptor held_;
  /// Sleep should be disabled, whether or not the lock is held.
  bool wanted_ = false;
  bool needsRecheck_ = false;
};

}  // namespace brindle
