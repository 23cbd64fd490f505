// Runs a piece of a test in a process of its own, as another user or to be killed.
#pragma once

#include <grp.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

namespace brindle {

/// The user "nobody", whom nothing belongs to.
inline constexpr uid_t kNobody = 65534;

/// A forked process that runs `body` and ends with 0 when it answered true; killed and reaped when it goes.
class ChildProcess {
 public:
  explicit ChildProcess(const std::function<bool()>& body) : pid_(::fork()) {
    if (pid_ == 0) ::_exit(body() ? 0 : 1);
  }
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  ~ChildProcess() { kill(); }

  /// Whether the body answered true; waits for its end.
  [[nodiscard]] bool succeeded() {
    const int status = wait();
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
  }
  /// Ends it as nothing can prevent, and waits until it is gone.
  void kill() {
    if (pid_ <= 0) return;
    ::kill(pid_, SIGKILL);
    (void)wait();
  }
  /// Whether it has ended; does not wait.
  [[nodiscard]] bool ended() {
    if (pid_ <= 0) return true;
    if (::waitpid(pid_, &status_, WNOHANG) != pid_) return false;
    pid_ = -1;
    return true;
  }

 private:
  int wait() {
    if (pid_ > 0) ::waitpid(pid_, &status_, 0);
    pid_ = -1;
    return status_;
  }

  pid_t pid_;
  int status_ = -1;
};

/// Whether `body` answers true when it runs with the rights of a user whom nothing belongs to. A test that does not
/// run as root has such rights over what it locked itself out of.
inline bool trueWithoutRights(const std::function<bool()>& body) {
  if (::geteuid() != 0) return body();
  return ChildProcess(
             [&] { return ::setgroups(0, nullptr) == 0 && ::setgid(kNobody) == 0 && ::setuid(kNobody) == 0 && body(); })
      .succeeded();
}

}  // namespace brindle
