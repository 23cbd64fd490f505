#include "base/file_writing.h"

#include <sys/stat.h>

#include <cerrno>

#include "base/stream.h"

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
  const Outcome written = writeAll(Stream{file.get(), "file"}, bytes);
  return written ? 0 : written.error().code;
}

}  // namespace brindle
