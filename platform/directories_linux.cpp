#include "platform/directories.h"

namespace brindle {

namespace {

struct BaseFolder {
  std::string variable;
  std::string belowHome;
};

/// One of the user's base folders; a relative path in the variable is invalid and counts as none.
std::optional<std::string> baseFolder(const Environment& environment, const BaseFolder& folder) {
  if (auto path = environment(folder.variable); path && path->starts_with('/')) return path;
  const auto home = homeFolder(environment);
  if (!home) return std::nullopt;
  return *home + folder.belowHome;
}

}  // namespace

std::optional<std::string> stateFolder(const Environment& environment) {
  if (auto folder = dataFolderOverride(environment)) return folder;
  const auto base = baseFolder(environment, {.variable = "XDG_STATE_HOME", .belowHome = "/.local/state"});
  if (!base) return std::nullopt;
  return *base + "/brindle";
}

std::optional<std::string> settingsFile(const Environment& environment) {
  if (const auto folder = dataFolderOverride(environment)) return *folder + "/settings.json";
  const auto base = baseFolder(environment, {.variable = "XDG_CONFIG_HOME", .belowHome = "/.config"});
  if (!base) return std::nullopt;
  return *base + "/brindle/settings.json";
}

}  // namespace brindle
