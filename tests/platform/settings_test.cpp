#include "platform/settings.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

#include "platform/host.h"
#include "tests/platform/temporary_folder.h"

namespace brindle {
namespace {

using testing::TemporaryFolder;

constexpr const char* kProtecting = R"({"protect":{"names":["node"]}})";

Environment environmentIn(const TemporaryFolder& folder) {
  return [path = folder.path()](const std::string& name) -> std::optional<std::string> {
    if (name == "BRINDLE_DATA_DIR") return path;
    return std::nullopt;
  };
}

TEST(Settings, AreEmptyWhereThereIsNoFile) {
  const TemporaryFolder folder;
  const Settings settings = readSettings(folder.path() + "/settings.json");
  EXPECT_EQ(settings.document, JsonObject());
  EXPECT_EQ(settings.problem, "");
}

TEST(Settings, AreReadThroughALink) {
  const TemporaryFolder folder;
  folder.write("real", "{\"a\":1}");
  std::filesystem::create_symlink(folder.path() + "/real", folder.path() + "/settings.json");
  EXPECT_EQ(readSettings(folder.path() + "/settings.json").document, (JsonObject{{"a", 1}}));
}

TEST(Settings, AreEmptyWithAProblemWhenTheyAreNoObjectOrTooLarge) {
  const TemporaryFolder folder;
  const std::string path = folder.path() + "/settings.json";
  for (const std::string& document : {std::string("[]"), std::string("{"), std::string(),
                                      "{\"a\":\"" + std::string(kSettingsByteLimit, 'x') + "\"}"}) {
    folder.write("settings.json", document);
    const Settings settings = readSettings(path);
    EXPECT_EQ(settings.document, JsonObject());
    EXPECT_TRUE(settings.problem.starts_with("cannot read the settings, taking the defaults: ")) << settings.problem;
  }
}

TEST(Settings, AreEmptyWithAProblemWhenALinkLeadsIntoACircleOrToAFolder) {
  const TemporaryFolder folder;
  const std::string path = folder.path() + "/settings.json";
  std::filesystem::create_symlink(path, path);
  EXPECT_EQ(readSettings(path).problem,
            "cannot read the settings, taking the defaults: " + path + ": " + errorText(ELOOP));
  std::filesystem::remove(path);
  std::filesystem::create_symlink(folder.path(), path);
  EXPECT_EQ(readSettings(path).problem, "cannot read the settings, taking the defaults: " + path + ": Is a directory");
}

TEST(Settings, ThatALinkPromisesButThatAreNotThereAreEmpty) {
  const TemporaryFolder folder;
  std::filesystem::create_symlink(folder.path() + "/missing", folder.path() + "/settings.json");
  const Settings settings = readSettings(folder.path() + "/settings.json");
  EXPECT_EQ(settings.document, JsonObject());
  EXPECT_EQ(settings.problem, "");
}

TEST(ProtectionRulesOf, AreThoseOfTheSettingsAlsoThroughALink) {
  const TemporaryFolder folder;
  EXPECT_EQ(protectionRulesOf(environmentIn(folder)), ProtectionRules{});
  folder.write("real", kProtecting);
  std::filesystem::create_symlink(folder.path() + "/real", folder.path() + "/settings.json");
  const ProtectionRules rules = protectionRulesOf(environmentIn(folder));
  EXPECT_NE(rules, ProtectionRules{});
  EXPECT_EQ(rules, protectionRulesFrom(JsonValue(settingsOf(environmentIn(folder)).document)));
}

TEST(ProtectionRulesOf, AreNoneWhereTheSettingsAreDamaged) {
  const TemporaryFolder folder;
  folder.write("settings.json", std::string(kProtecting) + "}");
  EXPECT_EQ(protectionRulesOf(environmentIn(folder)), ProtectionRules{});
  EXPECT_NE(settingsOf(environmentIn(folder)).problem, "");
}

}  // namespace
}  // namespace brindle
