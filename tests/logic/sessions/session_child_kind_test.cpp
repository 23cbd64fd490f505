#include "logic/sessions/session_child_kind.h"

#include <gtest/gtest.h>

#include "tests/logic/sessions/sample_processes.h"

namespace brindle {
namespace {

using Kind = SessionChildKind;

TrackedProcess running(std::string commandLine) {
  TrackedProcess made = process({.pid = 500});
  made.commandLine = std::move(commandLine);
  return made;
}

TEST(SessionChildKind, TakesAnMcpServerThatListensForMcp) {
  TrackedProcess server = running("node mcp-server.js --port 3000");
  server.ports = {3000};
  server.framework = "Vite";
  EXPECT_EQ(classifyChild(server), Kind::mcp);
}

TEST(SessionChildKind, KnowsBothMcpWords) {
  EXPECT_EQ(classifyChild(running("uvx some-mcp")), Kind::mcp);
  EXPECT_EQ(classifyChild(running("node node_modules/@modelcontextprotocol/server-git")), Kind::mcp);
}

TEST(SessionChildKind, TakesAListenerForADevServer) {
  TrackedProcess server = running("node vitest --ui");
  server.ports = {51204};
  EXPECT_EQ(classifyChild(server), Kind::devServer);
}

TEST(SessionChildKind, TakesAFrameworkForADevServerEvenWithoutPorts) {
  TrackedProcess server = running("node build.js");
  server.framework = "Next.js";
  EXPECT_EQ(classifyChild(server), Kind::devServer);
}

TEST(SessionChildKind, TakesVitestThroughNodeForATestRunner) {
  EXPECT_EQ(classifyChild(running("node /srv/app/node_modules/.bin/vitest run")), Kind::testRunner);
}

TEST(SessionChildKind, KnowsEveryTestRunner) {
  for (const char* word : {"vitest", "jest", "pytest", "playwright", "cargo test", "go test", "xcodebuild"}) {
    EXPECT_EQ(classifyChild(running(std::string("run ") + word + " now")), Kind::testRunner) << word;
  }
}

TEST(SessionChildKind, KnowsEveryBrowser) {
  for (const char* word : {"chrome", "chromium", "firefox", "headless"}) {
    EXPECT_EQ(classifyChild(running(std::string("run ") + word + " now")), Kind::browser) << word;
  }
}

TEST(SessionChildKind, KnowsAWordAtTheVeryStartAndInCapitals) {
  EXPECT_EQ(classifyChild(running("jest --watch")), Kind::testRunner);
  EXPECT_EQ(classifyChild(running("npx PLAYWRIGHT")), Kind::testRunner);
}

TEST(SessionChildKind, LooksForTestRunnersBeforeBrowsers) {
  EXPECT_EQ(classifyChild(running("chrome --for playwright")), Kind::testRunner);
}

TEST(SessionChildKind, TakesANameThatHoldsChromeInAnyLetterCaseForABrowser) {
  for (const char* name : {"Google Chrome Helper", "CHROME", "chrome"}) {
    TrackedProcess browser = process({.pid = 500});
    browser.name = name;
    EXPECT_EQ(classifyChild(browser), Kind::browser) << name;
  }
}

TEST(SessionChildKind, SearchesThePath) {
  TrackedProcess browser = process({.pid = 500});
  browser.path = "/opt/Chrome/worker";
  EXPECT_EQ(classifyChild(browser), Kind::browser);
}

TEST(SessionChildKind, NeedsNoWordBoundaries) {
  EXPECT_EQ(classifyChild(running("node xjestx.js")), Kind::testRunner);
  EXPECT_EQ(classifyChild(running("cargo tests")), Kind::testRunner);
}

TEST(SessionChildKind, IsOtherWithoutAnyWord) {
  EXPECT_EQ(classifyChild(running("bash -c sleep")), Kind::other);
  EXPECT_EQ(classifyChild(TrackedProcess{}), Kind::other);
  EXPECT_EQ(classifyChild(running("cargo  test; mc p; chrom ium; vites")), Kind::other);
}

TEST(SessionChildKind, JoinsCommandLinePathAndNameWithSingleBlanks) {
  TrackedProcess split = running("cargo");
  split.path = "test";
  EXPECT_EQ(classifyChild(split), Kind::testRunner);
  split = running("run");
  split.path = "go";
  split.name = "test";
  EXPECT_EQ(classifyChild(split), Kind::testRunner);
}

TEST(SessionChildKind, LeavesTwoBlanksWhereThePathIsAbsent) {
  TrackedProcess split = running("cargo");
  split.path = std::nullopt;
  split.name = "test";
  EXPECT_EQ(classifyChild(split), Kind::other);
  split.name = "jest";
  EXPECT_EQ(classifyChild(split), Kind::testRunner);
}

}  // namespace
}  // namespace brindle
