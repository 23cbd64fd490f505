#include "base/stale_temporary.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>
#include <string_view>

#include "base/uuid.h"

namespace brindle {
namespace {

constexpr std::string_view kSuffix = ".tmp";

struct FolderCloser {
  void operator()(DIR* folder) const { ::closedir(folder); }
};

/// "PATH" in two parts; the folder is the working directory's for a bare name.
struct Place {
  std::string folder;
  std::string name;
};

Place placeOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return {".", path};
  return {path.substr(0, slash + 1), path.substr(slash + 1)};
}

bool isTemporaryOf(std::string_view name, std::string_view entry) {
  if (!entry.starts_with(name)) return false;
  entry.remove_prefix(name.size());
  if (!entry.starts_with('.') || !entry.ends_with(kSuffix)) return false;
  return isUuidText(entry.substr(1, entry.size() - 1 - kSuffix.size()));
}

bool isStale(const struct stat& status, std::time_t now) {
  return S_ISREG(status.st_mode) && status.st_uid == ::geteuid() && status.st_nlink == 1 &&
         now - status.st_mtime >= kStaleTemporaryAge;
}

}  // namespace

std::string temporaryPathFor(const std::string& path) { return path + "." + randomUuidText() + std::string(kSuffix); }

void removeStaleTemporaries(const std::string& path, std::time_t now) {
  const auto [folderPath, name] = placeOf(path);
  const std::unique_ptr<DIR, FolderCloser> folder(::opendir(folderPath.c_str()));
  if (!folder) return;
  const int descriptor = ::dirfd(folder.get());
  for (std::size_t seen = 0; seen < kSweptEntryLimit; ++seen) {
    const dirent* entry = ::readdir(folder.get());
    if (entry == nullptr) return;
    if (!isTemporaryOf(name, entry->d_name)) continue;
    struct stat status {};
    if (::fstatat(descriptor, entry->d_name, &status, AT_SYMLINK_NOFOLLOW) != 0 || !isStale(status, now)) continue;
    (void)!::unlinkat(descriptor, entry->d_name, 0);
  }
}

}  // namespace brindle
