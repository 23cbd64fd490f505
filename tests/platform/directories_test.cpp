#include "platform/directories.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>

namespace brindle {
namespace {

Environment environmentOf(std::map<std::string, std::string> variables) {
  return [variables](const std::string& name) -> std::optional<std::string> {
    const auto found = variables.find(name);
    if (found == variables.end()) return std::nullopt;
    return found->second;
  };
}

TEST(Directories, LieBelowTheHomeFolder) {
  const auto environment = environmentOf({{"HOME", "/home/ada"}});
  EXPECT_EQ(stateFolder(environment), "/home/ada/.local/state/brindle");
  EXPECT_EQ(settingsFile(environment), "/home/ada/.config/brindle/settings.json");
}

TEST(Directories, FollowTheBaseFolders) {
  const auto environment =
      environmentOf({{"HOME", "/home/ada"}, {"XDG_STATE_HOME", "/state"}, {"XDG_CONFIG_HOME", "/config"}});
  EXPECT_EQ(stateFolder(environment), "/state/brindle");
  EXPECT_EQ(settingsFile(environment), "/config/brindle/settings.json");
}

TEST(Directories, IgnoreRelativeAndEmptyBaseFolders) {
  const auto environment = environmentOf({{"HOME", "/home/ada"}, {"XDG_STATE_HOME", "state"}, {"XDG_CONFIG_HOME", ""}});
  EXPECT_EQ(stateFolder(environment), "/home/ada/.local/state/brindle");
  EXPECT_EQ(settingsFile(environment), "/home/ada/.config/brindle/settings.json");
}

TEST(Directories, AreAllTheOneThatTheOverrideNames) {
  const auto environment = environmentOf({{"BRINDLE_DATA_DIR", "/data"},
                                          {"HOME", "/home/ada"},
                                          {"XDG_STATE_HOME", "/state"},
                                          {"XDG_CONFIG_HOME", "/config"}});
  EXPECT_EQ(stateFolder(environment), "/data");
  EXPECT_EQ(settingsFile(environment), "/data/settings.json");
}

TEST(Directories, TakeARelativeOverrideFromTheWorkingDirectory) {
  const auto here = std::filesystem::current_path().string();
  EXPECT_EQ(stateFolder(environmentOf({{"BRINDLE_DATA_DIR", "data"}})), here + "/data");
}

TEST(Directories, TakeAnEmptyOverrideForNone) {
  const auto environment = environmentOf({{"BRINDLE_DATA_DIR", ""}, {"HOME", "/home/ada"}});
  EXPECT_EQ(stateFolder(environment), "/home/ada/.local/state/brindle");
}

TEST(Directories, AskTheUserDatabaseWhenHomeIsMissingOrRelative) {
  const auto expected = homeFolder(environmentOf({}));
  if (expected) {
    EXPECT_TRUE(expected->starts_with('/'));
  }
  EXPECT_EQ(homeFolder(environmentOf({{"HOME", "relative"}})), expected);
  EXPECT_EQ(homeFolder(environmentOf({{"HOME", "/home/ada"}})), "/home/ada");
}

}  // namespace
}  // namespace brindle
