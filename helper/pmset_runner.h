// The sleep switch of macOS: the system's power-management tool, run as a child process.
//
// Plain POSIX, so it is built and tested everywhere; only macOS has the tool. Used on Helper's queue, which it blocks
// until the child has ended. The log outlives it.
#pragma once

#include <string>

#include "helper/helper_log.h"
#include "helper/sleep_switch.h"

namespace brindle {

class PmsetRunner final : public SleepSwitch {
 public:
  /// `executable` is another program only in tests.
  explicit PmsetRunner(HelperLog& log, std::string executable = std::string(kPmsetPath));

  /// The child gets an empty environment, null streams, default signal actions and no blocked signals. True exactly
  /// when it exits with 0. A child that cannot be started is an error in the log. A child killed by a signal counts
  /// as one that exits with the signal's number.
  [[nodiscard]] bool run(PmsetCommand command, std::optional<RevertReason> reason) override;
  [[nodiscard]] std::string_view name() const override { return "pmset"; }
  /// The executable and its arguments joined by single spaces.
  [[nodiscard]] std::string commandLine(PmsetCommand command) const;

 private:
  HelperLog& log_;
  std::string executable_;
};

}  // namespace brindle
