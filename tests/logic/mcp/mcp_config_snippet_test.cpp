#include "logic/mcp/mcp_config_snippet.h"

#include <gmock/gmock.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <toml++/toml.h>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "base/json_reader.h"

namespace brindle {
namespace {

using testing::ElementsAre;

std::string shell(std::string_view path) { return MCPConfigSnippet::make(MCPClient::claudeCode, path).text; }
std::string toml(std::string_view path) { return MCPConfigSnippet::make(MCPClient::codex, path).text; }
std::string json(std::string_view path) { return MCPConfigSnippet::make(MCPClient::cursor, path).text; }

/// The arguments that a real shell hands to `claude`.
std::vector<std::string> argumentsSeenByClaude(const std::string& command) {
  const std::string script = "claude() { printf '%s\\0' \"$@\"; }; " + command;
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(script.c_str(), "r"), &pclose);
  std::vector<std::string> arguments;
  std::string current;
  for (int byte = std::fgetc(pipe.get()); byte != EOF; byte = std::fgetc(pipe.get())) {
    if (byte != 0) {
      current.push_back(static_cast<char>(byte));
      continue;
    }
    arguments.push_back(std::move(current));
    current.clear();
  }
  return arguments;
}

/// The command and the arguments that a real TOML reader finds.
std::vector<std::string> commandSeenByToml(const std::string& text) {
  const toml::table table = toml::parse(text);
  const auto server = table["mcp_servers"]["brindle"];
  std::vector<std::string> words = {server["command"].value_or(std::string("no command"))};
  if (const toml::array* args = server["args"].as_array()) {
    for (const auto& word : *args) words.push_back(word.value_or(std::string("no text")));
  }
  return words;
}

TEST(MCPConfigSnippet, HasATitleForEachClient) {
  EXPECT_EQ(MCPConfigSnippet::make(MCPClient::claudeCode, "/x").title, "Run in Terminal");
  EXPECT_EQ(MCPConfigSnippet::make(MCPClient::cursor, "/x").title, "Add to ~/.cursor/mcp.json");
  EXPECT_EQ(MCPConfigSnippet::make(MCPClient::codex, "/x").title, "Add to ~/.codex/config.toml");
}

TEST(MCPConfigSnippet, LeavesAPathOfPlainCharactersUnquotedInTheShell) {
  EXPECT_EQ(shell("/opt/brindle"), "claude mcp add --scope user brindle -- /opt/brindle mcp");
  EXPECT_EQ(shell("azAZ09/._-+:%@"), "claude mcp add --scope user brindle -- azAZ09/._-+:%@ mcp");
}

TEST(MCPConfigSnippet, QuotesAPathWithABlankInTheShell) {
  EXPECT_EQ(shell("/Applications/My Brindle.app/brindle"),
            "claude mcp add --scope user brindle -- '/Applications/My Brindle.app/brindle' mcp");
}

TEST(MCPConfigSnippet, QuotesAnEmptyPathInTheShell) {
  EXPECT_EQ(shell(""), "claude mcp add --scope user brindle -- '' mcp");
}

TEST(MCPConfigSnippet, WritesASingleQuoteInTheShellAsAQuoteSequence) {
  EXPECT_EQ(shell("/ada's/brindle"), R"(claude mcp add --scope user brindle -- '/ada'\''s/brindle' mcp)");
}

TEST(MCPConfigSnippet, QuotesEverythingElseInTheShell) {
  for (const char* path : {"~", "a=b", "a,b", "é", "$HOME", "a\\b", "*"}) {
    EXPECT_EQ(shell(path), "claude mcp add --scope user brindle -- '" + std::string(path) + "' mcp");
  }
}

TEST(MCPConfigSnippet, WritesPrettySortedJsonWithPlainSlashes) {
  EXPECT_EQ(json("/opt/brindle"), R"({
  "mcpServers" : {
    "brindle" : {
      "args" : [
        "mcp"
      ],
      "command" : "/opt/brindle"
    }
  }
})");
}

TEST(MCPConfigSnippet, SaysWhenThePathCannotBeJson) { EXPECT_EQ(json("/\xff"), MCPConfigSnippet::kNoJson); }

TEST(MCPConfigSnippet, WritesATomlTable) {
  EXPECT_EQ(toml("/opt/brindle"), "[mcp_servers.brindle]\ncommand = \"/opt/brindle\"\nargs = [\"mcp\"]");
}

TEST(MCPConfigSnippet, DoublesBackslashesAndEscapesQuotesInToml) {
  EXPECT_EQ(toml(R"(C:\a "b")"), "[mcp_servers.brindle]\ncommand = \"C:\\\\a \\\"b\\\"\"\nargs = [\"mcp\"]");
}

TEST(MCPConfigSnippet, ReachesARealShellAsOneArgument) {
  for (const std::string path : {"/plain", "", "/a b", "/a'b", "''", "'", "$(echo x)`echo y`", "a\nb", "\"\\*?!#~"}) {
    EXPECT_THAT(argumentsSeenByClaude(shell(path)),
                ElementsAre("mcp", "add", "--scope", "user", "brindle", "--", path, "mcp"));
  }
}

TEST(MCPConfigSnippet, ReachesARealTomlReaderWhole) {
  for (const std::string path : {"/plain", "", "/a b", "/a'b", "\\", "\"", "\\\"", "\\\\n", "é \xF0\x9F\x98\x80"}) {
    EXPECT_THAT(commandSeenByToml(toml(path)), ElementsAre(path, "mcp"));
  }
}

TEST(MCPClient, HasItsTextsInOrder) {
  std::vector<std::string> texts;
  for (const auto& row : allCases<MCPClient>()) {
    EXPECT_EQ(enumFrom<MCPClient>(textOf(row.value)), row.value);
    texts.emplace_back(row.text);
  }
  EXPECT_THAT(texts, ElementsAre("claudeCode", "cursor", "codex"));
}

rc::Gen<std::string> paths() {
  return rc::gen::container<std::string>(
      rc::gen::oneOf(rc::gen::element('\'', '"', '\\', ' ', '$', '/', 'a'), rc::gen::inRange<char>(' ', '~')));
}

RC_GTEST_PROP(MCPConfigSnippet, QuotesEveryPrintablePathForARealShell, ()) {
  const std::string path = *paths();
  const auto arguments = argumentsSeenByClaude(shell(path));
  RC_ASSERT(arguments.size() == 8U);
  RC_ASSERT(arguments[6] == path);
}

RC_GTEST_PROP(MCPConfigSnippet, QuotesEveryPrintablePathForARealTomlReader, ()) {
  const std::string path = *paths();
  RC_ASSERT(commandSeenByToml(toml(path)) == (std::vector<std::string>{path, "mcp"}));
}

RC_GTEST_PROP(MCPConfigSnippet, WritesJsonThatReadsBack, ()) {
  const std::string path = *paths();
  const JsonObject server{{"args", JsonArray{"mcp"}}, {"command", path}};
  RC_ASSERT(parseJson(json(path)) == JsonValue(JsonObject{{"mcpServers", JsonObject{{"brindle", server}}}}));
}

}  // namespace
}  // namespace brindle
