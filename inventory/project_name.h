// The project that a folder belongs to: the nearest folder upwards with a manifest, and the name in it.
//
// Used by the inventory with the process sources' view of the file system. The rules read no file themselves.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "base/enum_text.h"

namespace brindle {

/// What marks a project's folder, in the order in which a folder is asked.
enum class Manifest { packageJson, cargoToml, pyprojectToml, goMod, git };

/// The texts are the file names.
template <>
inline constexpr auto kEnumTexts<Manifest> = std::to_array<EnumText<Manifest>>({
    {Manifest::packageJson, "package.json"},
    {Manifest::cargoToml, "Cargo.toml"},
    {Manifest::pyprojectToml, "pyproject.toml"},
    {Manifest::goMod, "go.mod"},
    {Manifest::git, ".git"},
});

/// The largest manifest that is read, in bytes; a larger one gives the folder's name.
inline constexpr std::size_t kManifestByteLimit = std::size_t{256} << 10;
/// Folders looked at from the working directory upwards.
inline constexpr int kProjectDepthLimit = 24;

/// The name that the manifest gives its project; none when it gives none, is damaged, or is ".git".
[[nodiscard]] std::optional<std::string> projectNameFrom(Manifest manifest, std::string_view text);

/// Finds projects and remembers each folder's answer for the finder's life, one snapshot. Not for several threads.
class ProjectFinder {
 public:
  /// The text of the file, empty for one that is no file or over kManifestByteLimit; none when nothing is there.
  using ReadManifest = std::function<std::optional<std::string>(const std::string& path)>;

  /// Folders from `home` upwards are no projects.
  ProjectFinder(std::string home, ReadManifest read);

  /// The name of the project that `folder`, an absolute path, lies in; none when no manifest is found below the home
  /// folder and the root, or within kProjectDepthLimit folders.
  [[nodiscard]] std::optional<std::string> projectOf(std::string_view folder);

 private:
  [[nodiscard]] std::optional<std::string> nameIn(const std::string& folder) const;

  std::string home_;
  ReadManifest read_;
  std::unordered_map<std::string, std::optional<std::string>> known_;
};

}  // namespace brindle
