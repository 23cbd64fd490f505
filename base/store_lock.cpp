#include "base/store_lock.h"

#include <utility>

#include "base/file.h"

namespace brindle {

Result<FileLock> lockStore(const StoreLockPath& path) {
  if (const Outcome folder = ensureFolder(path.directory); !folder) return tl::make_unexpected(folder.error());
  std::string file = path.directory + "/";
  file += path.lockName;
  Result<FileLock> lock = FileLock::acquire(file);
  if (!lock) return fail(kFileWriteNoPermission, lock.error().doing);
  return lock;
}

}  // namespace brindle
