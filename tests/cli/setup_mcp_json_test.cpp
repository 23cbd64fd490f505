#include "cli/setup_mcp_json.h"

#include <gtest/gtest.h>

namespace brindle {
namespace {

constexpr std::string_view kProgram = "/usr/bin/brindle";

std::string withServer(const std::string& server) { return R"({"mcpServers":{"brindle":)" + server + "}}"; }

TEST(SetupMcpJson, AddsTheServerBesideThoseOfOthers) {
  EXPECT_EQ(withJsonServer(R"({"mcpServers":{"a":{}}})", kProgram),
            (EditedText{R"({"mcpServers":{"a":{},"brindle":{"command":"/usr/bin/brindle","args":["mcp"]}}})"}));
  EXPECT_EQ(withJsonServer(R"({"b":1})", kProgram),
            (EditedText{R"({"b":1,"mcpServers":{"brindle":{"command":"/usr/bin/brindle","args":["mcp"]}}})"}));
}

TEST(SetupMcpJson, TellsWhoseServerItIs) {
  const std::pair<std::string, ServerState> cases[] = {
      {withServer(R"({"command":"/usr/bin/brindle","args":["mcp"]})"), ServerState::same},
      {withServer(R"({"command":"/usr/bin/brindle","args":["mcp","--framing=lines"],"env":{}})"), ServerState::same},
      {withServer(R"({"command":"/old/brindle","args":["mcp"]})"), ServerState::stale},
      {withServer(R"({"command":"/usr/bin/other","args":["mcp"]})"), ServerState::foreign},
      {withServer(R"({"command":"/usr/bin/brindle","args":[]})"), ServerState::foreign},
      {withServer(R"({"url":"http://localhost"})"), ServerState::foreign},
      {withServer("null"), ServerState::foreign},
      {R"({"mcpServers":{}})", ServerState::absent},
      {R"({"mcpServers":[]})", ServerState::absent},
      {"[]", ServerState::absent},
      {"not JSON", ServerState::absent},
  };
  for (const auto& [text, state] : cases) EXPECT_EQ(jsonServerState(text, kProgram), state) << text;
}

TEST(SetupMcpJson, PutsOnlyThePathOfAStaleServerRight) {
  EXPECT_EQ(withJsonServer(withServer(R"({"env":{"A":"b"}, "command":"/old/brindle","args":["mcp","--x"]})"), kProgram),
            (EditedText{withServer(R"({"env":{"A":"b"}, "command":"/usr/bin/brindle","args":["mcp","--x"]})")}));
}

TEST(SetupMcpJson, LeavesTheServerOfSomebodyElseAlone) {
  const std::string theirs = withServer(R"({"command":"other"})");
  EXPECT_EQ(withJsonServer(theirs, kProgram),
            (EditedText{.text = theirs,
                        .declined = {"an MCP server \"brindle\" of somebody else is registered; left alone"}}));
  EXPECT_EQ(withoutJsonServer({.text = theirs, .before = {}}, kProgram), EditedText{theirs});
}

TEST(SetupMcpJson, TakesItsServerAwayWhereverItLies) {
  EXPECT_EQ(
      withoutJsonServer({.text = withServer(R"({"command":"/old/brindle","args":["mcp"]})"), .before = {}}, kProgram),
      EditedText{"{}"});
  EXPECT_EQ(withoutJsonServer(
                {.text = withServer(R"({"command":"/old/brindle","args":["mcp"]})"), .before = R"({"mcpServers":{}})"},
                kProgram),
            EditedText{R"({"mcpServers":{}})"});
}

TEST(SetupMcpJson, RefusesWhatItCannotRead) {
  const std::pair<const char*, const char*> cases[] = {{"{", "not valid JSON"},
                                                       {"3", "expected a JSON object"},
                                                       {R"({"mcpServers":[]})", "\"mcpServers\" is not an object"}};
  for (const auto& [text, problem] : cases) {
    EXPECT_EQ(withJsonServer(text, kProgram), (EditedText{.text = text, .problem = problem}));
    EXPECT_EQ(withoutJsonServer({.text = text, .before = {}}, kProgram),
              (EditedText{.text = text, .problem = problem}));
  }
}

}  // namespace
}  // namespace brindle
