#include "base/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>

#include "base/descriptor.h"
#include "base/file_writing.h"
#include "base/stale_temporary.h"

namespace brindle {
namespace {

constexpr std::size_t kReadChunk = std::size_t{64} << 10;

/// Opens a fresh file, writes and flushes it, gives it its name and sweeps; 0 or an errno value.
int writeAndRename(const std::string& temporary, const std::string& path, std::string_view bytes) {
  Descriptor file(::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kFileMode));
  if (!file) return errno;
  int code = writeAll(file, bytes);
  // The clock that the temporary files of others are measured by, too.
  struct stat written {};
  if (code == 0 && ::fstat(file.get(), &written) != 0) code = errno;
  // Without it a crash of the machine can leave the new name with none of its bytes; an empty file has none to lose.
  if (code == 0 && !bytes.empty() && ::fsync(file.get()) != 0 && errno != EINVAL) code = errno;
  // Some file systems report a full disk only here.
  if (::close(file.release()) != 0 && code == 0 && errno != EINTR) code = errno;
  if (code == 0 && ::rename(temporary.c_str(), path.c_str()) != 0) code = errno;
  if (code != 0) ::unlink(temporary.c_str());
  if (code == 0) removeStaleTemporaries(path, written.st_mtime);
  return code;
}

}  // namespace

Result<std::string> readFile(const std::string& path, std::size_t limit) {
  const std::string doing = "read " + path;
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK));
  if (!file) return fail(errno, doing);
  const auto known = regularFileSize(file);
  if (!known) return fail(known.error(), doing);
  const auto size = static_cast<std::size_t>(std::max<off_t>(*known, 0));
  if (size > limit) return fail(EFBIG, doing);
  std::string bytes;
  // Files of the system report no size; one that grows meanwhile is read as far as it goes.
  for (std::size_t room = size + 1;; room = kReadChunk) {
    const std::size_t filled = bytes.size();
    bytes.resize(filled + room);
    const ssize_t count = ::read(file.get(), bytes.data() + filled, room);
    const int code = errno;
    bytes.resize(filled + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    if (count < 0 && code != EINTR) return fail(code, doing);
    if (count == 0) return bytes;
    if (bytes.size() > limit) return fail(EFBIG, doing);
  }
}

Outcome replaceFile(const std::string& path, std::string_view bytes) {
  const int code = writeAndRename(temporaryPathFor(path), path, bytes);
  if (code != 0) return writeFailure(code, "replace " + path);
  return {};
}

Outcome ensureFolder(const std::string& path) {
  const std::string doing = "create folder " + path;
  for (std::size_t end = path.find('/', 1); end != std::string::npos; end = path.find('/', end + 1)) {
    const std::string parent = path.substr(0, end);
    struct stat status {};
    // Only what is missing is made: a parent that exists may well refuse new entries.
    if (::stat(parent.c_str(), &status) == 0) continue;
    if (::mkdir(parent.c_str(), kFolderMode) != 0 && errno != EEXIST) return writeFailure(errno, doing);
  }
  if (::mkdir(path.c_str(), kFolderMode) == 0) return {};
  const int code = errno;
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return writeFailure(code, doing);
  if (!S_ISDIR(status.st_mode)) return writeFailure(ENOTDIR, doing);
  if (status.st_uid != ::geteuid()) return fail(kFileWriteNoPermission, doing);
  return {};
}

Outcome removeFile(const std::string& path) {
  if (::unlink(path.c_str()) == 0 || errno == ENOENT) return {};
  return writeFailure(errno, "remove " + path);
}

std::optional<std::size_t> fileSize(const std::string& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  return static_cast<std::size_t>(status.st_size);
}

}  // namespace brindle
