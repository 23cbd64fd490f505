#include "inventory/process_origin.h"

#include <gtest/gtest.h>

namespace brindle {
namespace {

constexpr std::uint32_t kUser = 1000;

struct Host {
  std::vector<ProcessFacts> processes{{.pid = 1, .ppid = 0, .uid = 0, .name = "systemd", .startTime = 1},
                                      {.pid = 900, .ppid = 1, .uid = kUser, .name = "systemd", .startTime = 5}};
  std::vector<OwnershipRecord> records;

  Host& agent(std::int32_t pid, std::int64_t start, std::string program = "claude") {
    processes.push_back(
        {.pid = pid, .ppid = 900, .uid = kUser, .name = program, .arguments = {program}, .startTime = start});
    return *this;
  }
  Host& server(std::int32_t pid, std::int32_t ppid, std::int64_t start, std::vector<NamedVariable> variables = {}) {
    processes.push_back({.pid = pid,
                         .ppid = ppid,
                         .uid = kUser,
                         .name = "node",
                         .path = "/usr/bin/node",
                         .arguments = {"node", "srv.js"},
                         .startTime = start,
                         .variables = std::move(variables)});
    return *this;
  }
  std::vector<ProcessOrigin> origins() const {
    return findOrigins({processes, records, kUser, SystemProcessRules::forLinux()});
  }
};

const std::vector<NamedVariable> kClaude{{"CLAUDECODE", "1"}};

TEST(ProcessOrigin, AServerOfAnAgentThatIsGoneIsLeftBehind) {
  const auto origins = Host().server(500, 1, 100, {{"CLAUDECODE", "1"}, {"CLAUDE_PID", "400"}}).origins();
  EXPECT_EQ(
      origins,
      (std::vector<ProcessOrigin>{{500, OriginTie::leftBehind, OriginEvidence::ownerPid, "Claude Code", 400, true}}));
  EXPECT_EQ(originText(origins.front()), "Claude Code (exited), by its owner's pid");
}

TEST(ProcessOrigin, ParentOneAloneProvesNothing) { EXPECT_TRUE(Host().server(500, 1, 100).origins().empty()); }

TEST(ProcessOrigin, ABackgroundServerOfALivingOwnerIsOwned) {
  const auto origins = Host().agent(400, 50).server(500, 1, 100, {{"CLAUDE_PID", "400"}}).origins();
  EXPECT_EQ(origins,
            (std::vector<ProcessOrigin>{{500, OriginTie::owned, OriginEvidence::ownerPid, "Claude Code", 400, true}}));
}

TEST(ProcessOrigin, AnOwnersPidOfAnotherNamespaceSaysNothing) {
  const auto originsOf = [](Host host) {
    host.processes.back().otherPids = true;
    return host.origins();
  };
  // A living agent in the same container, which has another pid here.
  const Host host = Host().agent(40400, 50).server(500, 900, 100, {{"CLAUDECODE", "1"}, {"CLAUDE_PID", "400"}});
  EXPECT_EQ(host.origins().at(0).tie, OriginTie::leftBehind);
  EXPECT_TRUE(originsOf(host).empty());
  // One that happens to have the pid here.
  EXPECT_TRUE(originsOf(Host().agent(400, 50).server(500, 900, 100, {{"CLAUDE_PID", "400"}})).empty());
  // The rest of the evidence stands.
  const auto origins = originsOf(Host().server(500, 900, 100, {{"CLAUDECODE", "1"}, {"CLAUDE_PID", "400"}}));
  EXPECT_EQ(origins.at(0).evidence, OriginEvidence::environment);
}

TEST(ProcessOrigin, OfAnAgentOutOfSightNothingIsLeftBehind) {
  const auto originsOf = [](const Host& host) {
    const std::vector<AgentKind> outOfSight{AgentKind::claudeCode};
    return findOrigins({host.processes, host.records, kUser, SystemProcessRules::forLinux(), outOfSight});
  };
  const std::vector<NamedVariable> marks{
      {"CLAUDECODE", "1"}, {"CLAUDE_PID", "400"}, {"CLAUDE_CODE_SESSION_ID", "gone"}};
  EXPECT_TRUE(originsOf(Host().server(500, 1, 100, marks)).empty());
  EXPECT_EQ(originsOf(Host().agent(400, 50).server(500, 1, 100, marks)).at(0).tie, OriginTie::owned);
  // Agents of other kinds are seen, or are gone; and a record is of one that was seen.
  EXPECT_EQ(originsOf(Host().server(500, 1, 100, {{"OPENCODE", "1"}})).at(0).tie, OriginTie::leftBehind);
  Host recorded = Host().server(500, 1, 100, marks);
  recorded.records = {{"b", 500, 100, 400, 50, "Claude Code"}};
  EXPECT_EQ(originsOf(recorded).at(0).evidence, OriginEvidence::record);
}

TEST(ProcessOrigin, AnOwnerThatStartedLaterThanTheChildIsAnotherProcess) {
  const auto tie = [](std::int64_t ownerStart) {
    const auto origins = Host().agent(400, ownerStart).server(500, 1, 100, {{"CLAUDE_PID", "400"}}).origins();
    return origins.at(0).tie;
  };
  EXPECT_EQ(tie(99), OriginTie::owned);
  EXPECT_EQ(tie(100), OriginTie::owned);
  EXPECT_EQ(tie(101), OriginTie::leftBehind);
}

TEST(ProcessOrigin, AnOlderProgramThatIsNoAgentSaysNothingAsAnOwner) {
  Host host;
  host.server(400, 900, 50).server(500, 1, 100, {{"CLAUDE_PID", "400"}});
  const auto origins = host.origins();
  ASSERT_EQ(origins.size(), 1U);
  EXPECT_EQ(origins.front().evidence, OriginEvidence::environment);
}

TEST(ProcessOrigin, ALivingOwnerDecidesBeforeADeadOneOfAnotherKind) {
  const auto origins =
      Host().agent(400, 50, "opencode").server(500, 1, 100, {{"CLAUDE_PID", "399"}, {"OPENCODE_PID", "400"}}).origins();
  ASSERT_EQ(origins.size(), 1U);
  EXPECT_EQ(origins.front().tie, OriginTie::owned);
  EXPECT_EQ(origins.front().agent, "opencode");
}

TEST(ProcessOrigin, AnOwnerInsideAnotherAgentIsOwnedByTheOuterOne) {
  Host host;
  host.agent(400, 50, "codex");
  host.agent(410, 60).processes.back().ppid = 400;
  const auto origins = host.server(500, 1, 100, {{"CLAUDE_PID", "410"}}).origins();
  ASSERT_EQ(origins.size(), 1U);
  EXPECT_EQ(origins.front().agentPid, 400);
}

TEST(ProcessOrigin, ARecordOfADeadAgentMakesItLeftBehind) {
  Host host;
  host.server(500, 1, 100).records = {{"boot", 500, 100, 400, 50, "Codex"}};
  EXPECT_EQ(host.origins(),
            (std::vector<ProcessOrigin>{{500, OriginTie::leftBehind, OriginEvidence::record, "Codex", 400, true}}));
}

TEST(ProcessOrigin, ARecordOfALivingAgentMakesItOwned) {
  Host host;
  host.agent(400, 50, "codex").server(500, 1, 100).records = {{"boot", 500, 100, 400, 50, "Codex"}};
  EXPECT_EQ(host.origins().at(0).tie, OriginTie::owned);
}

TEST(ProcessOrigin, RecordsHoldForTheirStartStampsOnly) {
  Host reused;
  reused.server(500, 1, 101).records = {{"boot", 500, 100, 400, 50, "Codex"}};
  EXPECT_TRUE(reused.origins().empty());
  Host agentReused;
  agentReused.agent(400, 51, "codex").server(500, 1, 100).records = {{"boot", 500, 100, 400, 50, "Codex"}};
  EXPECT_EQ(agentReused.origins().at(0).tie, OriginTie::leftBehind);
}

TEST(ProcessOrigin, AnEnvironmentWithoutAnOldEnoughAgentMakesItLeftBehind) {
  const auto ofAgentStartedAt = [](std::int64_t start) {
    return Host().agent(400, start).server(500, 1, 100, kClaude).origins();
  };
  EXPECT_TRUE(ofAgentStartedAt(99).empty());
  EXPECT_TRUE(ofAgentStartedAt(100).empty());
  const auto later = ofAgentStartedAt(101);
  ASSERT_EQ(later.size(), 1U);
  EXPECT_EQ(later.front().tie, OriginTie::leftBehind);
  EXPECT_EQ(later.front().evidence, OriginEvidence::environment);
  EXPECT_EQ(later.front().agentPid, std::nullopt);
  EXPECT_EQ(originText(later.front()), "Claude Code (exited), by its environment");
}

TEST(ProcessOrigin, AnAgentOfAnotherKindOrUserDoesNotExcuseIt) {
  EXPECT_EQ(Host().agent(400, 50, "codex").server(500, 1, 100, kClaude).origins().size(), 1U);
  Host other;
  other.agent(400, 50).processes.back().uid = 1001;
  EXPECT_EQ(other.server(500, 1, 100, kClaude).origins().size(), 1U);
}

TEST(ProcessOrigin, NestedMarkersNeedEveryKindToBeGone) {
  const std::vector<NamedVariable> both{{"CLAUDECODE", "1"}, {"CODEX_SANDBOX", "x"}};
  EXPECT_TRUE(Host().agent(400, 50).server(500, 1, 100, both).origins().empty());
  EXPECT_EQ(Host().server(500, 1, 100, both).origins().size(), 1U);
}

TEST(ProcessOrigin, ASessionThatNobodySharesIsLikelyLeftBehindOnly) {
  Host host;
  host.agent(400, 50).server(450, 400, 60, {{"CLAUDECODE", "1"}, {"CLAUDE_CODE_SESSION_ID", "live"}});
  host.server(500, 1, 100, {{"CLAUDECODE", "1"}, {"CLAUDE_CODE_SESSION_ID", "dead"}});
  host.server(501, 1, 100, {{"CLAUDECODE", "1"}, {"CLAUDE_CODE_SESSION_ID", "live"}});
  EXPECT_EQ(host.origins(), (std::vector<ProcessOrigin>{
                                {500, OriginTie::likely, OriginEvidence::session, "Claude Code", std::nullopt, true}}));
  EXPECT_EQ(originText(host.origins().front()), "Claude Code (perhaps exited), by its session");
}

TEST(ProcessOrigin, AShellSnapshotArgumentIsLikelyLeftBehindOnly) {
  Host host;
  host.server(500, 1, 100);
  host.processes.back().arguments = {"zsh", "-c",
                                     "source /home/a/.claude/shell-snapshots/snapshot-zsh-1.sh && eval 'x'"};
  ASSERT_EQ(host.origins().size(), 1U);
  EXPECT_EQ(host.origins().front().tie, OriginTie::likely);
}

TEST(ProcessOrigin, TheRootOfTheSubtreeIsJudgedAndWhatIsBelowFollows) {
  Host host;
  host.server(500, 900, 100, kClaude).server(501, 500, 110).server(502, 501, 120);
  const auto origins = host.origins();
  ASSERT_EQ(origins.size(), 3U);
  EXPECT_TRUE(origins[0].root);
  EXPECT_FALSE(origins[1].root);
  EXPECT_EQ(origins[2].pid, 502);
  EXPECT_EQ(origins[2].tie, OriginTie::leftBehind);
}

TEST(ProcessOrigin, AWorkerWithMarksBelowARootWithoutIsNotJudged) {
  EXPECT_TRUE(Host().server(500, 1, 100).server(501, 500, 110, kClaude).origins().empty());
}

TEST(ProcessOrigin, AnOrphanWhoseParentIsNotListedIsJudged) {
  EXPECT_EQ(Host().server(500, 77, 100, kClaude).origins().size(), 1U);
}

TEST(ProcessOrigin, WhatHangsBelowAnAgentThroughAnotherManagerIsNotJudged) {
  Host host;
  host.agent(400, 50);
  host.processes.push_back({.pid = 410, .ppid = 400, .uid = kUser, .name = "tini", .arguments = {"tini"}});
  EXPECT_TRUE(host.server(500, 410, 100, {{"CLAUDE_PID", "399"}}).origins().empty());
}

TEST(ProcessOrigin, AProcessBelowAShellIsNotJudged) {
  Host host;
  host.processes.push_back({.pid = 300, .ppid = 900, .uid = kUser, .name = "bash", .arguments = {"-bash"}});
  EXPECT_TRUE(host.server(500, 300, 100, kClaude).origins().empty());
}

TEST(ProcessOrigin, ProgramsThatLiveOnByDesignAreNeverLeftBehindNorWhatIsBelowThem) {
  for (const char* program :
       {"tmux", "ssh-agent", "gpg-agent", "watchman", "sccache", "ollama", "dockerd", "postgres"}) {
    Host host;
    host.server(500, 1, 100, kClaude);
    host.processes.back().path = std::string("/usr/bin/") + program;
    host.processes.back().arguments = {program};
    host.server(501, 500, 110, kClaude);
    EXPECT_TRUE(host.origins().empty()) << program;
  }
  Host codex;
  codex.server(500, 1, 100, {{"CODEX_THREAD_ID", "t"}});
  codex.processes.back().path = "/usr/bin/codex";
  codex.processes.back().arguments = {"codex", "app-server", "--managed-daemon"};
  EXPECT_TRUE(codex.origins().empty());
}

TEST(ProcessOrigin, AnotherUsersProcessesAreNotJudged) {
  Host host;
  host.server(500, 1, 100, kClaude).processes.back().uid = 1001;
  EXPECT_TRUE(host.origins().empty());
}

TEST(ProcessOrigin, AnAgentBelowALeftBehindShellIsASessionNotAGhost) {
  Host host;
  host.server(500, 1, 100, {{"CODEX_SANDBOX", "x"}}).agent(501, 110).processes.back().ppid = 500;
  host.server(502, 501, 120);
  const auto origins = host.origins();
  ASSERT_EQ(origins.size(), 1U);
  EXPECT_EQ(origins.front().pid, 500);
}

TEST(ProcessOrigin, WhatTheSystemManagerItselfStartedIsNotLeftBehind) {
  Host host;
  host.server(500, 1, 100, kClaude).processes.back().adopted = false;
  EXPECT_TRUE(host.origins().empty());
  host.processes.back().adopted = true;
  EXPECT_EQ(host.origins().size(), 1U);
}

TEST(ProcessOrigin, LoopsAndRepeatedPidsDoNotHang) {
  Host host;
  host.server(500, 501, 100, kClaude).server(501, 500, 100, kClaude).server(502, 502, 100, kClaude).server(502, 1, 100);
  EXPECT_EQ(host.origins().size(), 1U);
  EXPECT_TRUE(findOrigins({{}, {}, kUser, SystemProcessRules::forLinux()}).empty());
}

TEST(ProcessOrigin, ATraceIsAVariableOrAShellSnapshot) {
  EXPECT_TRUE(showsTrace({.variables = kClaude}));
  EXPECT_TRUE(showsTrace({.arguments = {"zsh", "-c", "source /h/.claude/shell-snapshots/snapshot-zsh-1.sh"}}));
  EXPECT_FALSE(showsTrace({.arguments = {"vim", ".claude/settings.json"}, .variables = {{"AGENT", "1"}}}));
}

TEST(ProcessOrigin, TextsRoundTrip) {
  for (const auto& row : allCases<OriginTie>()) EXPECT_EQ(enumFrom<OriginTie>(textOf(row.value)), row.value);
  for (const auto& row : allCases<OriginEvidence>()) EXPECT_EQ(enumFrom<OriginEvidence>(textOf(row.value)), row.value);
}

}  // namespace
}  // namespace brindle
