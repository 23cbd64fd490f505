// A child process that its owner waits for: program, arguments, environment, streams and signals are all said.
//
// Used by the helper's pmset runner and by `brindle run`. Plain POSIX, the same on every system. One thread a value.
#pragma once

#include <sys/types.h>

#include <csignal>
#include <optional>
#include <string>
#include <vector>

#include "base/result.h"
#include "system/event_loop.h"

namespace brindle {

struct ChildSpec {
  /// The path of the program; looked up in PATH instead when `searchesPath` is set and it has no slash.
  std::string program;
  /// The arguments after the program's own name.
  std::vector<std::string> arguments;
  bool searchesPath = false;
  /// "NAME=value" each; none hands down the caller's own environment.
  std::optional<std::vector<std::string>> environment;
  /// Standard input, output and error are the null device instead of the caller's own.
  bool nullStreams = false;
  /// Every signal gets its default action and none is blocked. Otherwise ignored signals stay ignored, and `mask`
  /// says which are blocked; without it those that the calling thread blocks.
  bool defaultSignals = false;
  std::optional<sigset_t> mask;
};

/// A started child that has not been waited for. Destroying it neither ends nor reaps the child: whoever starts one
/// waits for it, here or through EventLoop::onChildEnd().
class ChildProcess {
 public:
  /// Fails with errno when the child cannot be created or the program cannot be executed (ENOENT, EACCES, …).
  [[nodiscard]] static Result<ChildProcess> start(const ChildSpec& spec);

  [[nodiscard]] pid_t pid() const { return pid_; }
  /// Blocks until the child has ended, however long that takes, and reaps it. Call once.
  [[nodiscard]] Result<ChildEnd> wait() const;

 private:
  explicit ChildProcess(pid_t pid) : pid_(pid) {}
  pid_t pid_ = -1;
};

}  // namespace brindle
