#include "inventory/agent_recognition.h"

#include <gtest/gtest.h>

#include <set>

#include "recorded_table.h"

namespace brindle {
namespace {

using testing::chainOf;
using testing::readRecordedTable;
using testing::RecordedRow;

ProcessFacts carrying(std::vector<NamedVariable> variables) {
  ProcessFacts facts;
  facts.pid = 700;
  facts.variables = std::move(variables);
  return facts;
}

std::string nameOf(const ProcessFacts& facts) {
  const auto kind = recogniseAgent(facts);
  return kind ? std::string(textOf(*kind)) : "-";
}

TEST(AgentRecognition, FindsTheNearestAgentAboveAHookCommand) {
  const std::vector<ProcessFacts> chain{
      {.pid = 30, .ppid = 20, .name = "brindle", .path = "/usr/bin/brindle", .arguments = {"brindle", "hook"}},
      {.pid = 20, .ppid = 10, .name = "sh", .path = "/bin/sh", .arguments = {"sh", "-c", "brindle hook"}},
      {.pid = 10, .ppid = 1, .name = "claude", .path = "/opt/claude", .arguments = {"claude"}}};
  EXPECT_EQ(nearestAgent(chain), (AgentOnChain{AgentKind::claudeCode, 2, 2}));
}

TEST(AgentRecognition, TellsEveryRecordedProcessApart) {
  const std::vector<RecordedRow> rows = readRecordedTable("agents.table");
  ASSERT_GT(rows.size(), 40U);
  for (const RecordedRow& row : rows) {
    EXPECT_EQ(nameOf(row.facts), row.expected) << "pid " << row.facts.pid;
  }
}

TEST(AgentRecognition, TheRecordingsHoldEveryKnownAgent) {
  std::set<std::string> seen;
  for (const RecordedRow& row : readRecordedTable("agents.table")) seen.insert(row.expected);
  for (const auto& kind : allCases<AgentKind>()) EXPECT_TRUE(seen.contains(std::string(kind.text))) << kind.text;
}

TEST(AgentRecognition, AWrapperAndItsChildAreOneAgentRootedAtTheWrapper) {
  const std::vector<RecordedRow> rows = readRecordedTable("agents.table");
  for (const std::int32_t child : {4202, 4302, 4402}) {
    const std::vector<ProcessFacts> chain = chainOf(rows, child);
    ASSERT_GE(chain.size(), 3U);
    const auto found = nearestAgent(chain);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->nearest, 0U);
    EXPECT_EQ(found->root, 1U);
  }
}

TEST(AgentRecognition, TheNearestOfNestedAgentsIsFoundAndKeepsItsOwnRoot) {
  const std::vector<ProcessFacts> chain{{.pid = 40, .arguments = {"sh"}},
                                        {.pid = 30, .arguments = {"codex"}},
                                        {.pid = 20, .arguments = {"claude"}},
                                        {.pid = 10, .arguments = {"codex"}}};
  EXPECT_EQ(nearestAgent(chain), (AgentOnChain{AgentKind::codex, 1, 1}));
}

TEST(AgentRecognition, NoAgentIsFoundOnAChainWithoutOne) {
  EXPECT_EQ(nearestAgent({}), std::nullopt);
  const std::vector<ProcessFacts> chain{{.pid = 40, .arguments = {"sh"}}, {.pid = 30, .arguments = {"make"}}};
  EXPECT_EQ(nearestAgent(chain), std::nullopt);
}

TEST(AgentRecognition, TheKernelNameCountsOnlyWhereNothingElseIsKnown) {
  EXPECT_EQ(nameOf({.pid = 10, .name = "claude"}), "Claude Code");
  EXPECT_EQ(nameOf({.pid = 10, .name = "claude", .path = "/usr/bin/vim", .arguments = {"vim"}}), "-");
}

TEST(AgentRecognition, DaemonsOfAgentsAreNoAgents) {
  const ProcessFacts managed{.arguments = {"codex", "app-server", "--managed-daemon"}};
  const ProcessFacts loop{.arguments = {"codex", "daemon", "pid-update-loop"}};
  const ProcessFacts claude{.arguments = {"claude", "daemon", "run"}};
  const ProcessFacts server{.arguments = {"codex", "app-server"}};
  EXPECT_TRUE(isAgentDaemon(identityOf(managed)));
  EXPECT_TRUE(isAgentDaemon(identityOf(loop)));
  EXPECT_TRUE(isAgentDaemon(identityOf(claude)));
  EXPECT_FALSE(isAgentDaemon(identityOf(server)));
  EXPECT_EQ(nameOf(server), "Codex");
}

TEST(AgentRecognition, EveryMarkerOfTheTableNamesItsAgent) {
  std::size_t markers = 0;
  for (const AgentRow& row : agentTable()) {
    for (const AgentMarker& marker : row.markers) {
      ++markers;
      const std::string value = marker.value.empty() ? "17" : std::string(marker.value);
      EXPECT_EQ(agentsNamedByVariables(carrying({{std::string(marker.variable), value}})), std::vector{row.kind})
          << marker.variable;
    }
  }
  EXPECT_GT(markers, 15U);
}

TEST(AgentRecognition, EmptyVariablesMarkNothing) {
  EXPECT_TRUE(agentsNamedByVariables(carrying({{"CLAUDECODE", ""}, {"AGENT", "1"}})).empty());
}

TEST(AgentRecognition, AmpIsTestedBeforeClaudeCodeWhoseVariableItSets) {
  EXPECT_EQ(agentsNamedByVariables(carrying({{"CLAUDECODE", "1"}, {"AGENT", "amp"}})), std::vector{AgentKind::amp});
}

TEST(AgentRecognition, ClaudeCodeInsideAmpIsNamedWhenItsPidIs) {
  const auto kinds = agentsNamedByVariables(carrying({{"CLAUDECODE", "1"}, {"AGENT", "amp"}, {"CLAUDE_PID", "812"}}));
  EXPECT_EQ(kinds, (std::vector{AgentKind::amp, AgentKind::claudeCode}));
}

TEST(AgentRecognition, NestedAgentsAreAllNamed) {
  const auto kinds = agentsNamedByVariables(carrying({{"CODEX_THREAD_ID", "t"}, {"CLAUDECODE", "1"}}));
  EXPECT_EQ(kinds, (std::vector{AgentKind::claudeCode, AgentKind::codex}));
}

TEST(AgentRecognition, AnOwnerPidIsAWholeNumberAboveOne) {
  const AgentRow& claude = agentRow(AgentKind::claudeCode);
  const auto pid = [&](std::string text) { return ownerPidOf(claude, carrying({{"CLAUDE_PID", std::move(text)}})); };
  EXPECT_EQ(pid("4101"), 4101);
  EXPECT_EQ(pid("2"), 2);
  for (const char* text : {"1", "0", "-7", "", "12x", " 12", "99999999999", "0x10"}) {
    EXPECT_EQ(pid(text), std::nullopt) << text;
  }
}

TEST(AgentRecognition, EveryVariableOfTheTableIsAmongTheNamedOnes) {
  const std::set<std::string_view> named(namedVariables().begin(), namedVariables().end());
  EXPECT_EQ(named.size(), namedVariables().size());
  std::set<std::string_view> used;
  for (const AgentRow& row : agentTable()) {
    for (const AgentMarker& marker : row.markers) used.insert(marker.variable);
    used.insert(row.ownerVariables.begin(), row.ownerVariables.end());
    used.insert(row.sessionVariables.begin(), row.sessionVariables.end());
  }
  EXPECT_EQ(used, named);
}

TEST(AgentTable, HasOneRowAKindInDeclarationOrder) {
  ASSERT_EQ(agentTable().size(), allCases<AgentKind>().size());
  for (std::size_t place = 0; place < agentTable().size(); ++place) {
    const AgentKind kind = allCases<AgentKind>()[place].value;
    EXPECT_EQ(agentTable()[place].kind, kind);
    EXPECT_EQ(&agentRow(kind), &agentTable()[place]);
    EXPECT_EQ(enumFrom<AgentKind>(textOf(kind)), kind);
  }
}

}  // namespace
}  // namespace brindle
