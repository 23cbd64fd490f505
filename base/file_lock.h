// An exclusive lock between processes, as a value: held while the object lives.
//
// The lock is an flock(2) on a file of its own, created with mode 0600 beside the file it guards and never
// removed, so that two processes can never lock two different files of one name. A symbolic link or a directory in
// its place is refused. The kernel releases it when its holder dies, however it dies.
#pragma once

#include <string>

#include "base/descriptor.h"
#include "base/result.h"

namespace brindle {

class FileLock {
 public:
  /// Waits until the lock is held. Failures carry errno (kFileWriteNoPermission where access is refused).
  [[nodiscard]] static Result<FileLock> acquire(const std::string& path);

 private:
  explicit FileLock(Descriptor file) : file_(std::move(file)) {}
  Descriptor file_;
};

}  // namespace brindle
