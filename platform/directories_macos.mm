#include "generated/identity_config.h"
#include "platform/directories.h"

namespace brindle {

std::optional<std::string> stateFolder(const Environment& environment) {
  if (auto folder = dataFolderOverride(environment)) return folder;
  const auto home = homeFolder(environment);
  if (!home) return std::nullopt;
  return *home + "/Library/Group Containers/" BRINDLE_APP_GROUP_ID;
}

std::optional<std::string> settingsFile(const Environment& environment) {
  if (const auto folder = dataFolderOverride(environment)) return *folder + "/settings.json";
  const auto home = homeFolder(environment);
  if (!home) return std::nullopt;
  return *home + "/Library/Application Support/Brindle/settings.json";
}

}  // namespace brindle
