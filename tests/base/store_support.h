// What the tests of the shared stores need of the system: modes, raw files, a plain user's rights.
#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace brindle {

inline constexpr uid_t kPlainUser = 65534;

/// The permission bits of a file or folder, -1 when there is none.
inline int modeOf(const std::string& path) {
  struct stat status {};
  return ::lstat(path.c_str(), &status) == 0 ? static_cast<int>(status.st_mode & 07777) : -1;
}

inline std::string contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline void writeRaw(const std::string& path, const std::string& bytes) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file << bytes;
  ASSERT_TRUE(file.flush()) << path;
}

/// Gives a file or folder to the user that asPlainUser runs as; nothing to do when this is no root.
inline void giveToPlainUser(const std::string& path) {
  if (::geteuid() != 0) return;
  ASSERT_EQ(::chown(path.c_str(), kPlainUser, kPlainUser), 0) << path;
}

/// What `check` answers without root's right to ignore permissions. Runs in a child when this is root.
template <typename Check>
bool asPlainUser(const Check& check) {
  if (::geteuid() != 0) return check();
  const pid_t child = ::fork();
  if (child == 0) {
    const bool dropped = ::setgid(kPlainUser) == 0 && ::setuid(kPlainUser) == 0;
    ::_exit(dropped && check() ? 0 : 1);
  }
  int status = -1;
  return ::waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

/// A folder that belongs to another user than the one who runs the test.
inline std::string foreignFolder(const std::string& scratch) {
  if (::geteuid() != 0) return "/usr";
  const std::string path = scratch + "/foreign";
  std::filesystem::create_directory(path);
  giveToPlainUser(path);
  return path;
}

}  // namespace brindle
