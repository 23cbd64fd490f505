// A command that runs in this program's place: same process group, same terminal, same streams.
//
// Used by `brindle run`. While the command runs this program only watches it: it stops when the command stops, goes
// on when the shell says so, and in the end dies of the same signal. POSIX, the same on every system. One thread.
#pragma once

#include <sys/types.h>

#include <csignal>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/result.h"
#include "system/event_loop.h"

namespace brindle {

/// How this process treated signals before it changed anything, as the command shall find it.
struct InheritedSignals {
  sigset_t blocked{};
  bool closedPipesIgnored = false;

  /// As things are now.
  [[nodiscard]] static InheritedSignals current();
};

/// Whether `signal` is ignored, as nohup and shells without job control leave it to their children.
[[nodiscard]] bool isIgnored(int signal);

/// Ends this process by `signal`, so that its parent sees what ended the command, without a second core file. Returns
/// only when the signal does not end processes.
void dieOf(int signal);

class ForegroundChild {
 public:
  struct Spec {
    /// The program, looked up in PATH unless it has a slash, and its arguments. Not empty.
    std::vector<std::string> words;
    InheritedSignals signals;
  };

  /// Starts the command and calls `ended` once, from the loop, when it has ended. Descriptors without close-on-exec
  /// are handed down. Fails with ENOENT when there is no such program, with another errno when it cannot be executed.
  /// The loop outlives the child; ignored signals stay ignored in it.
  [[nodiscard]] static Result<ForegroundChild> start(EventLoop& loop, const Spec& spec,
                                                     std::function<void(ChildEnd)> ended);

  /// Passes a signal on; nothing once the command has ended.
  void forward(int signal) const;

 private:
  struct Watch;
  explicit ForegroundChild(std::shared_ptr<Watch> watch) : watch_(std::move(watch)) {}
  std::shared_ptr<Watch> watch_;
};

}  // namespace brindle
