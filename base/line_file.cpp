#include "base/line_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "base/file_writing.h"

namespace brindle {
namespace {

std::string doingTo(const std::string& path) { return "append to " + path; }

// Without the right to read, which only a changed mode takes away, what the file ends with stays unknown.
bool endsInsideALine(const Descriptor& file, off_t size) {
  char last = '\n';
  return size > 0 && ::pread(file.get(), &last, 1, size - 1) == 1 && last != '\n';
}

}  // namespace

Result<LineFile> LineFile::open(const std::string& path, Start start) {
  const int flags = O_CREAT | O_APPEND | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | (start == Start::afresh ? O_TRUNC : 0);
  Descriptor file(::open(path.c_str(), O_RDWR | flags, kFileMode));
  if (!file && errno == EACCES) file = Descriptor(::open(path.c_str(), O_WRONLY | flags, kFileMode));
  if (!file) return writeFailure(errno, doingTo(path));
  if (const auto size = regularFileSize(file); !size) return writeFailure(size.error(), doingTo(path));
  return LineFile(std::move(file), path);
}

Outcome LineFile::append(std::string_view lines) {
  const auto before = regularFileSize(file_);
  if (!before) return writeFailure(before.error(), doingTo(path_));
  const std::string afterPiece = endsInsideALine(file_, *before) ? "\n" + std::string(lines) : std::string();
  if (const int code = writeAll(file_, afterPiece.empty() ? lines : afterPiece); code != 0) {
    // Half a line need not stay when there is somebody to take it back; where that fails the next append mends it.
    (void)!::ftruncate(file_.get(), *before);
    return writeFailure(code, doingTo(path_));
  }
  return {};
}

Outcome appendLines(const std::string& path, std::string_view lines) {
  Result<LineFile> file = LineFile::open(path);
  if (!file) return tl::make_unexpected(file.error());
  return file->append(lines);
}

}  // namespace brindle
