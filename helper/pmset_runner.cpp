#include "helper/pmset_runner.h"

#include <utility>

#include "base/result.h"
#include "system/child_process.h"

namespace brindle {

PmsetRunner::PmsetRunner(HelperLog& log, std::string executable) : log_(log), executable_(std::move(executable)) {}

bool PmsetRunner::run(PmsetCommand command, std::optional<RevertReason> reason) {
  ChildSpec spec{.program = executable_,
                 .environment = std::vector<std::string>{},
                 .nullStreams = true,
                 // The daemon ignores or blocks SIGTERM, and a child would inherit that.
                 .defaultSignals = true};
  for (const auto argument : pmsetArguments(command)) spec.arguments.emplace_back(argument);

  const auto child = ChildProcess::start(spec);
  if (!child) {
    log_.error("pmset failed to start: " + errorText(child.error().code));
    return false;
  }
  const auto end = child->wait();
  if (!end) {
    log_.error("pmset was lost: " + errorText(end.error().code));
    return false;
  }
  log_.event(switchLogLine(commandLine(command), end->killedBy != 0 ? end->killedBy : end->exitStatus, reason));
  return end->succeeded();
}

std::string PmsetRunner::commandLine(PmsetCommand command) const {
  std::string line = executable_;
  for (const auto argument : pmsetArguments(command)) line.append(" ").append(argument);
  return line;
}

}  // namespace brindle
