#include "inventory/program_recognition.h"

#include <gtest/gtest.h>

#include <set>

namespace brindle {
namespace {

std::optional<ProgramClass> classOfProgram(std::string path, std::vector<std::string> arguments) {
  const ProcessFacts facts{.pid = 500, .name = "x", .path = std::move(path), .arguments = std::move(arguments)};
  return classOf(identityOf(facts));
}

bool livesOn(std::string path, std::vector<std::string> arguments) {
  const ProcessFacts facts{.pid = 500, .name = "x", .path = std::move(path), .arguments = std::move(arguments)};
  return livesOnByDesign(identityOf(facts));
}

TEST(ProgramRecognition, PutsProgramsIntoTheirClasses) {
  EXPECT_EQ(classOfProgram("/usr/bin/nvim", {"nvim", "a.c"}), ProgramClass::ide);
  EXPECT_EQ(classOfProgram("/usr/libexec/gnome-terminal-server", {}), ProgramClass::terminal);
  EXPECT_EQ(classOfProgram("/usr/lib/postgresql/15/bin/postgres", {"postgres: writer"}), ProgramClass::database);
  EXPECT_EQ(classOfProgram("/usr/bin/docker-proxy", {"/usr/bin/docker-proxy"}), ProgramClass::container);
  EXPECT_EQ(classOfProgram("/usr/bin/ssh-agent", {"ssh-agent"}), ProgramClass::daemon);
  EXPECT_EQ(classOfProgram("/usr/lib/systemd/systemd", {"systemd", "--user"}), ProgramClass::systemManager);
  EXPECT_EQ(classOfProgram("/usr/bin/node", {"node", "srv.js"}), std::nullopt);
}

TEST(ProgramRecognition, EveryNameOfTheTableIsOfItsClassOrAnEarlierOne) {
  std::size_t names = 0;
  for (const auto& row : allCases<ProgramClass>()) {
    for (const std::string_view name : programsOf(row.value)) {
      ++names;
      const auto found = classOfProgram("/usr/bin/" + std::string(name), {std::string(name)});
      ASSERT_TRUE(found) << name;
      EXPECT_LE(static_cast<int>(*found), static_cast<int>(row.value)) << name;
    }
  }
  EXPECT_GT(names, 80U);
}

TEST(ProgramRecognition, ProgramsInsideAnIdesBundleBelongToIt) {
  EXPECT_EQ(classOfProgram("/Applications/Xcode.app/Contents/MacOS/helper", {}), ProgramClass::ide);
  EXPECT_EQ(classOfProgram("/Applications/NotXcode.app/Contents/MacOS/helper", {}), std::nullopt);
  EXPECT_EQ(classOfProgram("/Applications/Xcode.app", {}), std::nullopt);
}

TEST(ProgramRecognition, DaemonsThatLiveOnByDesignAreKnown) {
  EXPECT_TRUE(
      livesOn("/usr/bin/java", {"java", "-cp", "g.jar", "org.gradle.launcher.daemon.bootstrap.GradleDaemon", "8"}));
  EXPECT_TRUE(livesOn("/usr/bin/java", {"java", "org.jetbrains.kotlin.daemon.KotlinCompileDaemon"}));
  EXPECT_TRUE(livesOn("/usr/bin/java", {"bazel(shop)", "-jar", "/x/A-server.jar"}));
  EXPECT_TRUE(livesOn("/usr/bin/node", {"node", "/x/node_modules/nx/src/daemon/server/start.js"}));
  EXPECT_TRUE(livesOn("/x/turbo", {"/x/turbo", "--skip-infer", "daemon"}));
  EXPECT_TRUE(livesOn("/usr/bin/tmux", {"tmux", "new"}));
  EXPECT_TRUE(livesOn("/usr/bin/codex", {"codex", "daemon", "pid-update-loop"}));
}

TEST(ProgramRecognition, TheSameToolsAtWorkDoNotLiveOn) {
  EXPECT_FALSE(livesOn("/x/turbo", {"/x/turbo", "run", "dev"}));
  EXPECT_FALSE(livesOn("/usr/bin/java", {"java", "-jar", "/x/shop.jar"}));
  EXPECT_FALSE(livesOn("/usr/bin/node", {"node", "srv.js", "daemon"}));
}

TEST(ProgramRecognition, ShellsAreKnownByTheirFile) {
  const ProcessFacts login{.path = "/usr/bin/zsh", .arguments = {"-zsh"}};
  const ProcessFacts script{.path = "/usr/bin/python3", .arguments = {"sh"}};
  EXPECT_TRUE(isShell(identityOf(login)));
  EXPECT_FALSE(isShell(identityOf(script)));
}

TEST(ProgramClass, TextsRoundTrip) {
  std::set<std::string_view> texts;
  for (const auto& row : allCases<ProgramClass>()) {
    EXPECT_EQ(enumFrom<ProgramClass>(textOf(row.value)), row.value);
    texts.insert(row.text);
  }
  EXPECT_EQ(texts.size(), 6U);
}

}  // namespace
}  // namespace brindle
