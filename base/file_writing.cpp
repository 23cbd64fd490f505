#include "base/file_writing.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>

namespace brindle {

tl::unexpected<Failure> writeFailure(int code, std::string doing) {
  const bool refused = code == EACCES || code == EPERM || code == EROFS;
  return fail(refused ? kFileWriteNoPermission : code, std::move(doing));
}

tl::expected<off_t, int> regularFileSize(const Descriptor& file) {
  struct stat status {};
  if (::fstat(file.get(), &status) != 0) return tl::make_unexpected(errno);
  if (S_ISDIR(status.st_mode)) return tl::make_unexpected(EISDIR);
  if (!S_ISREG(status.st_mode)) return tl::make_unexpected(EINVAL);
  return status.st_size;
}

int writeAll(const Descriptor& file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(file.get(), bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return errno;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return 0;
}

}  // namespace brindle
