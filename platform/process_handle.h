// A running process that cannot be mistaken for another one: what signals are sent through.
//
// Used by the stopping commands. Between looking at a process and signalling it the process may end and its pid be
// given to another; a handle is opened for a pid and a start stamp, and refers to that process for its life.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "base/date.h"
#include "base/descriptor.h"
#include "base/result.h"

namespace brindle {

class ProcessHandle {
 public:
  struct Identity {
    std::int32_t pid = 0;
    std::int64_t startTime = 0;
  };
  /// ESRCH when the process has ended or the pid belongs to one with another stamp.
  [[nodiscard]] static Result<ProcessHandle> open(Identity identity);

  /// ESRCH when it has ended, EPERM when it may not be signalled.
  Outcome signal(int number) const;
  /// Whether it has ended; also true while it waits to be reaped by its parent.
  [[nodiscard]] bool hasEnded() const;
  [[nodiscard]] std::int32_t pid() const { return pid_; }

  /// Waits until all of them have ended, `patience` at most; true when they have.
  [[nodiscard]] static bool waitForAll(std::span<const ProcessHandle* const> handles, Seconds patience);

 private:
  ProcessHandle(Descriptor handle, std::int32_t pid) : handle_(std::move(handle)), pid_(pid) {}
  /// Closed once the end was seen, where the system tells of it only once.
  mutable Descriptor handle_;
  std::int32_t pid_ = 0;
};

}  // namespace brindle
