#include "platform/proc_folder_linux.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <memory>

#include "base/number_text.h"
#include "inventory/proc_text.h"

namespace brindle {
namespace {

using Name = std::array<char, 64>;

struct CloseFolder {
  void operator()(DIR* folder) const { ::closedir(folder); }
};
using Folder = std::unique_ptr<DIR, CloseFolder>;

Name nameOf(std::int32_t pid, const char* file) {
  Name name{};
  std::snprintf(name.data(), name.size(), "%d/%s", pid, file);
  return name;
}

Folder openFolder(int root, const char* name) {
  Descriptor file(::openat(root, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!file) return nullptr;
  DIR* folder = ::fdopendir(file.get());
  if (folder != nullptr) (void)file.release();
  return Folder(folder);
}

std::vector<std::int32_t> numbersIn(int root, const char* name, std::size_t limit) {
  std::vector<std::int32_t> found;
  const Folder folder = openFolder(root, name);
  if (!folder) return found;
  while (const dirent* entry = ::readdir(folder.get())) {
    if (found.size() == limit) break;
    const auto number = wholeFromText<std::int32_t>(entry->d_name);
    if (number && *number > 0) found.push_back(*number);
  }
  std::ranges::sort(found);
  return found;
}

/// Reads up to `room` bytes; none when reading fails. What the kernel makes up for one process comes whole in one call,
/// so one that does not fill the room is the last: another would double the cost of a small file.
std::optional<std::size_t> readUpTo(int file, char* into, std::size_t room) {
  for (;;) {
    const ssize_t count = ::read(file, into, room);
    if (count >= 0) return static_cast<std::size_t>(count);
    if (errno != EINTR) return std::nullopt;
  }
}

/// One entry of a folder as the kernel writes it.
struct RawEntry {
  std::uint64_t inode;
  std::int64_t next;
  unsigned short length;
  unsigned char type;
};
constexpr std::size_t kRawNameOffset = 19;
/// No entry of /proc/PID/fd is longer; where more room than that is left, the kernel had no more to tell.
constexpr std::size_t kLongestRawEntry = 280;

/// Calls `take` with each name in the folder until it answers false; false when the folder cannot be read. By hand,
/// because readdir(3) asks the kernel four more questions a folder, and there is a folder for each process.
template <typename Take>
bool eachName(const Descriptor& folder, Take&& take) {
  alignas(RawEntry) std::array<char, 8192> bytes;
  for (;;) {
    const long length = ::syscall(SYS_getdents64, folder.get(), bytes.data(), bytes.size());
    if (length < 0) return false;
    const auto filled = static_cast<std::size_t>(length);
    for (std::size_t at = 0; at + kRawNameOffset < filled;) {
      unsigned short entryLength = 0;
      std::memcpy(&entryLength, bytes.data() + at + offsetof(RawEntry, length), sizeof entryLength);
      if (entryLength <= kRawNameOffset || at + entryLength > filled) return false;
      const char* name = bytes.data() + at + kRawNameOffset;
      if (!take(name)) return true;
      at += entryLength;
    }
    if (filled + kLongestRawEntry <= bytes.size()) return true;
  }
}

}  // namespace

Result<ProcFolder> ProcFolder::open(const std::string& root) {
  Descriptor folder(::open(root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!folder) return fail(errno, "open " + root);
  return ProcFolder(std::move(folder));
}

Result<ProcFolder> ProcFolder::again() const {
  Descriptor folder(::fcntl(root_.get(), F_DUPFD_CLOEXEC, 0));
  if (!folder) return fail(errno, "open /proc again");
  return ProcFolder(std::move(folder));
}

std::vector<std::int32_t> ProcFolder::pids(std::size_t limit) const { return numbersIn(root_.get(), ".", limit); }

std::optional<ProcFolder::Entry> ProcFolder::entry(std::int32_t pid) {
  constexpr std::size_t kLineLimit = 4096;
  Descriptor file(::openat(root_.get(), nameOf(pid, "stat").data(), O_RDONLY | O_CLOEXEC));
  if (!file) return std::nullopt;
  // The folder's owner is the user that the process runs as. Its files are the superuser's once a process has changed
  // its user or forbids to be traced, as servers do that bind a port first, and keepers of keys.
  struct stat about = {};
  if (::fstatat(root_.get(), nameOf(pid, "").data(), &about, 0) != 0) return std::nullopt;
  const auto length = readUpTo(file.get(), buffer_.data(), kLineLimit);
  if (!length) return std::nullopt;
  auto stat = parseProcStat(std::string_view(buffer_).substr(0, *length));
  if (!stat || stat->pid != pid) return std::nullopt;
  return Entry{std::move(*stat), about.st_uid};
}

std::optional<std::string_view> ProcFolder::read(std::int32_t pid, const char* file) {
  const Descriptor opened(::openat(root_.get(), nameOf(pid, file).data(), O_RDONLY | O_CLOEXEC));
  if (!opened) return std::nullopt;
  const auto length = readUpTo(opened.get(), buffer_.data(), buffer_.size());
  if (!length) return std::nullopt;
  return std::string_view(buffer_).substr(0, *length);
}

std::optional<std::string> ProcFolder::link(std::int32_t pid, const char* file) const {
  std::array<char, 4096> target{};
  const ssize_t length = ::readlinkat(root_.get(), nameOf(pid, file).data(), target.data(), target.size());
  if (length < 0 || static_cast<std::size_t>(length) == target.size()) return std::nullopt;
  return std::string(withoutDeletedMark({target.data(), static_cast<std::size_t>(length)}));
}

std::vector<std::int32_t> ProcFolder::childrenOf(std::int32_t pid, std::size_t threadLimit) {
  std::vector<std::int32_t> children;
  for (const std::int32_t thread : numbersIn(root_.get(), nameOf(pid, "task").data(), threadLimit)) {
    const std::string file = "task/" + std::to_string(thread) + "/children";
    const auto text = read(pid, file.c_str());
    const std::vector<std::int32_t> found = text ? parsePidList(*text) : std::vector<std::int32_t>{};
    children.insert(children.end(), found.begin(), found.end());
  }
  return children;
}

std::optional<std::vector<std::uint64_t>> ProcFolder::sockets(std::int32_t pid, std::size_t limit) const {
  const Descriptor folder(::openat(root_.get(), nameOf(pid, "fd").data(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!folder) return std::nullopt;
  std::vector<std::uint64_t> inodes;
  std::size_t looked = 0;
  const bool read = eachName(folder, [&](const char* name) {
    if (name[0] == '.') return true;
    if (looked++ == limit) return false;
    std::array<char, 64> target;
    const ssize_t length = ::readlinkat(folder.get(), name, target.data(), target.size());
    if (length <= 0) return true;
    if (const auto inode = parseSocketLink({target.data(), static_cast<std::size_t>(length)})) inodes.push_back(*inode);
    return true;
  });
  return read ? std::optional(std::move(inodes)) : std::nullopt;
}

}  // namespace brindle
