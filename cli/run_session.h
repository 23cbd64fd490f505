// `brindle run`: holds sleep off while a command runs.
//
// Called by the run command with everything it needs, so that tests can stand in for helper, clock and battery.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/command_context.h"
#include "platform/foreground_child.h"
#include "platform/sleep_holder.h"
#include "system/event_loop.h"

namespace brindle {

struct RunRequest {
  /// The command and its arguments; not empty.
  std::vector<std::string> words;
  Seconds duration{0};
  /// Run the command also when sleep cannot be held off.
  bool bestEffort = false;
};

/// How it ended: the command's own end, or an exit code of this program when the command was not run.
struct RunResult {
  std::optional<ChildEnd> child;
  int code = 0;

  bool operator==(const RunResult&) const = default;
};

/// Runs `loop` until the command has ended and sleep has been let go. The command is started when sleep is off, or
/// when the power gate forbids a hold for now. Signals that a process sends to this program go on to the command;
/// those of the terminal reach it anyway.
[[nodiscard]] RunResult runHeld(EventLoop& loop, SleepHolder::Parts parts, const RunRequest& request,
                                CommandContext& context);

}  // namespace brindle
