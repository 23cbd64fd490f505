// The lock of a shared store: a folder that several processes write to, each file guarded by a lock file beside it.
#pragma once

#include <string>
#include <string_view>

#include "base/file_lock.h"
#include "base/result.h"

namespace brindle {

/// A store's folder and the name of the lock file in it.
struct StoreLockPath {
  std::string directory;
  std::string_view lockName;
};

/// Creates the folder with its parents where needed and waits for the lock. A folder that cannot be made or belongs to
/// another user fails as ensureFolder does; a lock file that cannot be opened or locked, for whatever reason, with
/// kFileWriteNoPermission, the one code that writers of the shared files are promised.
[[nodiscard]] Result<FileLock> lockStore(const StoreLockPath& path);

/// The failure under the one code that writers of the shared files are promised; its own reason stays in the text.
[[nodiscard]] Failure asNoPermission(Failure failure);

}  // namespace brindle
