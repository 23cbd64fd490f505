#include "base/store_lock.h"

#include <utility>

#include "base/file.h"

namespace brindle {

Result<FileLock> lockStore(const StoreLockPath& path) {
  if (const Outcome folder = ensureFolder(path.directory); !folder) return tl::make_unexpected(folder.error());
  std::string file = path.directory + "/";
  file += path.lockName;
  Result<FileLock> lock = FileLock::acquire(file);
  if (!lock) return tl::make_unexpected(asNoPermission(std::move(lock.error())));
  return lock;
}

Failure asNoPermission(Failure failure) {
  if (failure.code != kFileWriteNoPermission) failure.doing += " (" + errorText(failure.code) + ")";
  failure.code = kFileWriteNoPermission;
  return failure;
}

}  // namespace brindle
