#include "base/file_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>

namespace brindle {

Result<FileLock> FileLock::acquire(const std::string& path) {
  const std::string doing = "lock " + path;
  Descriptor file(::open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK, 0600));
  if (!file) {
    const bool refused = errno == EACCES || errno == EPERM || errno == EROFS;
    return fail(refused ? kFileWriteNoPermission : errno, doing);
  }
  struct stat status {};
  if (::fstat(file.get(), &status) != 0) return fail(errno, doing);
  if (!S_ISREG(status.st_mode)) return fail(EINVAL, doing);
  while (::flock(file.get(), LOCK_EX) != 0) {
    if (errno != EINTR) return fail(errno, doing);
  }
  return FileLock(std::move(file));
}

}  // namespace brindle
