#include "platform/proc_folder_linux.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <memory>

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

std::optional<std::int32_t> numberFrom(std::string_view text) {
  std::int32_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return number;
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
    const auto number = numberFrom(entry->d_name);
    if (number && *number > 0) found.push_back(*number);
  }
  std::ranges::sort(found);
  return found;
}

/// Reads up to `room` bytes; none when reading fails.
std::optional<std::size_t> readUpTo(int file, char* into, std::size_t room) {
  std::size_t length = 0;
  while (length < room) {
    const ssize_t count = ::read(file, into + length, room - length);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return std::nullopt;
    if (count == 0) break;
    length += static_cast<std::size_t>(count);
  }
  return length;
}

}  // namespace

Result<ProcFolder> ProcFolder::open(const std::string& root) {
  Descriptor folder(::open(root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!folder) return fail(errno, "open " + root);
  return ProcFolder(std::move(folder));
}

std::vector<std::int32_t> ProcFolder::pids(std::size_t limit) const { return numbersIn(root_.get(), ".", limit); }

std::optional<ProcFolder::Entry> ProcFolder::entry(std::int32_t pid) {
  constexpr std::size_t kLineLimit = 4096;
  Descriptor file(::openat(root_.get(), nameOf(pid, "stat").data(), O_RDONLY | O_CLOEXEC));
  if (!file) return std::nullopt;
  struct stat about = {};
  if (::fstat(file.get(), &about) != 0) return std::nullopt;
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
  const Folder folder = openFolder(root_.get(), nameOf(pid, "fd").data());
  if (!folder) return std::nullopt;
  std::vector<std::uint64_t> inodes;
  std::size_t looked = 0;
  while (const dirent* entry = ::readdir(folder.get())) {
    if (entry->d_name[0] == '.') continue;
    if (looked++ == limit) break;
    std::array<char, 64> target{};
    const ssize_t length = ::readlinkat(::dirfd(folder.get()), entry->d_name, target.data(), target.size());
    if (length <= 0) continue;
    if (const auto inode = parseSocketLink({target.data(), static_cast<std::size_t>(length)})) inodes.push_back(*inode);
  }
  return inodes;
}

}  // namespace brindle
