#include "inventory/program_identity.h"

#include <gtest/gtest.h>

namespace brindle {
namespace {

ProcessFacts running(std::string path, std::vector<std::string> arguments) {
  return {.pid = 500, .name = "node", .path = std::move(path), .arguments = std::move(arguments)};
}

TEST(ProgramIdentity, KeepsFileInvocationAndScriptSideBySide) {
  const ProcessFacts facts =
      running("/usr/bin/node", {"node", "--max-old-space-size=9", "/x/bin/gemini", "-p", "hello"});
  const ProgramIdentity program = identityOf(facts);
  EXPECT_EQ(program.executable, "node");
  EXPECT_EQ(program.invoked, "node");
  EXPECT_EQ(program.scriptPath, "/x/bin/gemini");
  EXPECT_EQ(program.script, "gemini");
  EXPECT_EQ(program.arguments, (std::vector<std::string_view>{"-p", "hello"}));
  EXPECT_EQ(program.subcommand(), "hello");
}

TEST(ProgramIdentity, TakesAwayTheEndingsOfNpmInstallsAndScripts) {
  const ProcessFacts installed = running("/x/bin/claude.exe", {"claude"});
  EXPECT_EQ(identityOf(installed).executable, "claude");
  for (const char* script : {"/x/server.js", "/x/server.mjs", "/x/server.cjs", "server.py", "./server"}) {
    const ProcessFacts facts = running("/usr/bin/node", {"node", script});
    EXPECT_EQ(identityOf(facts).script, "server") << script;
  }
}

TEST(ProgramIdentity, ReadsAnInterpretersVersionAsPartOfItsName) {
  const ProcessFacts facts = running("/usr/bin/python3.11", {"/usr/bin/python3.11", "/usr/bin/flask", "run"});
  EXPECT_EQ(identityOf(facts).script, "flask");
}

TEST(ProgramIdentity, CodeOnTheCommandLineIsNoScript) {
  for (const char* option : {"-c", "-e", "-p", "--eval"}) {
    const ProcessFacts facts = running("/usr/bin/node", {"node", option, "claude"});
    EXPECT_EQ(identityOf(facts).script, "") << option;
  }
}

TEST(ProgramIdentity, OptionsWithValuesDoNotHideTheScript) {
  const ProcessFacts facts = running("/usr/bin/node", {"node", "--require", "/x/hook.cjs", "--inspect", "srv.js", "a"});
  EXPECT_EQ(identityOf(facts).script, "srv");
}

TEST(ProgramIdentity, AModuleIsTheScriptOfPython) {
  const ProcessFacts facts = running("/usr/bin/python3", {"python3", "-u", "-m", "http.server", "8004"});
  EXPECT_EQ(identityOf(facts).script, "http.server");
  EXPECT_EQ(identityOf(facts).subcommand(), "8004");
}

TEST(ProgramIdentity, AModuleOptionWithoutModuleHasNoScript) {
  const ProcessFacts facts = running("/usr/bin/python3", {"python3", "-m"});
  EXPECT_EQ(identityOf(facts).script, "");
}

TEST(ProgramIdentity, ATitleIsReadAsItsWords) {
  const ProcessFacts facts = running("/usr/bin/node", {"npm run  dev"});
  const ProgramIdentity program = identityOf(facts);
  EXPECT_EQ(program.invoked, "npm");
  EXPECT_EQ(program.arguments, (std::vector<std::string_view>{"run", "dev"}));
}

TEST(ProgramIdentity, ASinglePathWithBlanksIsNoTitle) {
  const ProcessFacts facts = running("/opt/My App/run", {"/opt/My App/run"});
  EXPECT_EQ(identityOf(facts).invoked, "run");
  EXPECT_TRUE(identityOf(facts).arguments.empty());
}

TEST(ProgramIdentity, TheMinusOfALoginShellIsNotPartOfItsName) {
  const ProcessFacts facts = running("/bin/bash", {"-bash"});
  EXPECT_EQ(identityOf(facts).invoked, "bash");
}

TEST(ProgramIdentity, EmptyFactsHaveNoNamesAndNoHarm) {
  const ProcessFacts facts;
  const ProgramIdentity program = identityOf(facts);
  EXPECT_EQ(program.invoked, "");
  EXPECT_FALSE(program.isCalled("node"));
  EXPECT_EQ(program.subcommand(), "");
  const ProcessFacts blank = running("", {""});
  EXPECT_EQ(identityOf(blank).invoked, "");
}

TEST(ProgramIdentity, LooksAtSixtyFourArgumentsOnly) {
  std::vector<std::string> arguments{"grep"};
  for (int each = 0; each < 200; ++each) arguments.push_back("file" + std::to_string(each));
  const ProcessFacts facts = running("/bin/grep", arguments);
  EXPECT_EQ(identityOf(facts).arguments.size(), 63U);
}

TEST(PathEndsWith, MatchesWholeComponentsFromTheEnd) {
  EXPECT_TRUE(pathEndsWith("/home/u/claude/versions/2.1.0", "claude/versions/*"));
  EXPECT_TRUE(pathEndsWith("claude/versions/2", "claude/versions/*"));
  EXPECT_FALSE(pathEndsWith("/home/u/claude/versions/2.1.0/rg", "claude/versions/*"));
  EXPECT_FALSE(pathEndsWith("/home/u/xclaude/versions/2.1.0", "claude/versions/*"));
  EXPECT_FALSE(pathEndsWith("versions/2.1.0", "claude/versions/*"));
  EXPECT_FALSE(pathEndsWith("/claude/versions/", "claude/versions/*"));
  EXPECT_FALSE(pathEndsWith("", "a"));
  EXPECT_FALSE(pathEndsWith("/a", ""));
}

}  // namespace
}  // namespace brindle
