#include "platform/directories.h"

#include <pwd.h>
#include <unistd.h>

#include <array>
#include <filesystem>

namespace brindle {

std::optional<std::string> homeFolder(const Environment& environment) {
  if (auto home = environment("HOME"); home && home->starts_with('/')) return home;
  std::array<char, 4096> buffer;
  passwd entry{};
  passwd* found = nullptr;
  const int code = ::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found);
  if (code != 0 || found == nullptr || found->pw_dir == nullptr || found->pw_dir[0] != '/') return std::nullopt;
  return std::string(found->pw_dir);
}

std::optional<std::string> dataFolderOverride(const Environment& environment) {
  const auto folder = environment("BRINDLE_DATA_DIR");
  if (!folder || folder->empty()) return std::nullopt;
  std::error_code error;
  const auto absolute = std::filesystem::absolute(*folder, error);
  return error ? *folder : absolute.string();
}

}  // namespace brindle
