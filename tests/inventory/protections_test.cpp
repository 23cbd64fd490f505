#include "inventory/protections.h"

#include <gtest/gtest.h>

#include "base/json_reader.h"
#include "logic/sessions/protection_text.h"

namespace brindle {
namespace {

constexpr std::uint32_t kUser = 1000;

TrackedProcess process(std::int32_t pid, std::int32_t ppid, std::string name) {
  return {.pid = pid, .ppid = ppid, .uid = kUser, .name = name, .path = "/opt/bin/" + name, .commandLine = name};
}

TrackedProcess agent(std::int32_t pid, std::int32_t ppid) {
  TrackedProcess tracked = process(pid, ppid, "claude");
  tracked.role = ProcessRole::agent;
  tracked.agentName = "Claude Code";
  return tracked;
}

HostSnapshot snapshot(std::vector<TrackedProcess> processes, const ProtectionRules& rules = {}) {
  return snapshotOf(std::move(processes),
                    SnapshotContext{dateFromSeconds(5000), kUser, SystemProcessRules::forLinux(), rules});
}

std::string reasonOf(const HostSnapshot& host, std::int32_t pid) {
  const auto found = host.protections.find(pid);
  return found == host.protections.end() ? "" : found->second;
}

TEST(Protections, EveryBuiltInLabelCoversItsPrograms) {
  TrackedProcess terminal = process(14, 1, "kitty");
  terminal.role = ProcessRole::terminal;
  const HostSnapshot host = snapshot({agent(11, 1), process(12, 1, "postgres"), process(13, 1, "nvim"), terminal,
                                      process(15, 1, "docker-proxy"), process(16, 1, "node")});
  EXPECT_EQ(reasonOf(host, 11), "Protected by default: AI agents");
  EXPECT_EQ(reasonOf(host, 12), "Protected by default: Databases");
  EXPECT_EQ(reasonOf(host, 13), "Protected by default: IDEs");
  EXPECT_EQ(reasonOf(host, 14), "Protected by default: Terminals");
  EXPECT_EQ(reasonOf(host, 15), "Protected by default: Containers");
  EXPECT_EQ(reasonOf(host, 16), "");
}

TEST(Protections, OthersAndSystemProcessesAndOurselvesAreProtected) {
  TrackedProcess other = process(11, 1, "node");
  other.uid = 1001;
  const HostSnapshot host = snapshot({other, process(12, 1, "systemd"), process(13, 1, "brindle")});
  EXPECT_EQ(reasonOf(host, 11), "Owned by another user");
  EXPECT_EQ(reasonOf(host, 12), "System process");
  EXPECT_EQ(reasonOf(host, 13), "Brindle itself");
}

TEST(Protections, AShellIsProtectedWhileItHoldsATerminal) {
  HostSnapshot host = snapshot({process(11, 1, "bash"), process(12, 1, "bash")});
  host.withTerminal = {11};
  const ProtectionReasons reasons = protectionReasons(host);
  EXPECT_EQ(reasons.at(11), "Your terminal shell");
  EXPECT_FALSE(reasons.contains(12));
}

TEST(Protections, TheFrontmostApplicationIsProtectedWithItsHelpersAndNotWithWhatItStarted) {
  const std::string folder = "/Applications/Some Browser.app/Contents/";
  TrackedProcess front = process(11, 1, "Some Browser");
  front.path = folder + "MacOS/Some Browser";
  TrackedProcess helper = process(12, 11, "Some Helper");
  helper.path = folder + "Helpers/Some Helper.app/Contents/MacOS/Some Helper";
  TrackedProcess namesake = process(14, 1, "Some Browser");
  namesake.path = "/Applications/Other.app/Contents/MacOS/Some Browser";
  HostSnapshot host = snapshot({front, helper, process(13, 11, "node"), namesake});
  EXPECT_TRUE(host.protections.empty());
  host.frontmost = 11;
  EXPECT_EQ(protectionReasons(host), (ProtectionReasons{{11, "The app you're using"}, {12, "The app you're using"}}));
  EXPECT_EQ(safetyInput(host, {.pid = 13}).protectedReason, std::nullopt);
  // A program that is no application of its own is itself alone, and one that is not there is nobody.
  host.frontmost = 13;
  EXPECT_EQ(protectionReasons(host), (ProtectionReasons{{13, "The app you're using"}}));
  host.frontmost = 99;
  EXPECT_TRUE(protectionReasons(host).empty());
}

TEST(Protections, AnApplicationsFolderIsTheOutermost) {
  EXPECT_EQ(applicationFolder("/Applications/A.app/Contents/B.app/Contents/MacOS/B"), "/Applications/A.app/");
  EXPECT_EQ(applicationFolder("/usr/bin/A.app"), "");
  EXPECT_EQ(applicationFolder("/usr/bin/A.apple/x"), "");
  EXPECT_EQ(applicationFolder(""), "");
}

TEST(Protections, TheUsersRulesCoverNamesPathsAndPorts) {
  TrackedProcess listener = process(13, 1, "node");
  listener.ports = {4000};
  TrackedProcess inFolder = process(14, 1, "node");
  inFolder.cwd = "/srv/keep/web";
  const ProtectionRules rules{.names = {"ngrok"}, .paths = {"/srv/keep/", "/opt/bin/tool"}, .ports = {4000}};
  const HostSnapshot host =
      snapshot({process(11, 1, "ngrok"), process(12, 1, "tool"), listener, inFolder, process(15, 1, "tools")}, rules);
  for (const std::int32_t pid : {11, 12, 13, 14}) EXPECT_EQ(reasonOf(host, pid), "Protected by your rule") << pid;
  EXPECT_EQ(reasonOf(host, 15), "");
}

TEST(Protections, LiveClientsProtectFromPlansThatNamedNobodyOnly) {
  HostSnapshot host = snapshot({process(11, 1, "node"), process(12, 1, "postgres")});
  host.clients = {{11, 2}, {12, 1}};
  const ProtectionReasons reasons = unaskedReasons(host);
  EXPECT_EQ(reasons.at(11), kConnectedReason);
  EXPECT_EQ(reasons.at(12), "Protected by default: Databases");
  EXPECT_FALSE(host.protections.contains(11));
}

TEST(QuitCandidates, SpareTheSessionBeingQuitTheProtectionOfAgents) {
  const HostSnapshot host = snapshot({agent(11, 1), agent(12, 11), agent(20, 1)});
  const auto label = [&](std::optional<std::int32_t> quitting, std::size_t at) {
    return quitCandidates(host, quitting).at(at).defaultProtection;
  };
  EXPECT_EQ(label(11, 0), std::nullopt);
  EXPECT_EQ(label(11, 1), std::nullopt);
  EXPECT_EQ(label(11, 2), "AI agents");
  EXPECT_EQ(label(std::nullopt, 0), "AI agents");
}

TEST(QuitCandidates, CarryWhatThePlannerNeeds) {
  TrackedProcess server = process(12, 1, "node");
  server.ports = {80, 70000};
  server.footprint = 9;
  server.recordedAgentPID = 11;
  server.recordedAgentAlive = true;
  const QuitCandidate candidate = quitCandidates(snapshot({server})).at(0);
  EXPECT_EQ(candidate.ports, (std::vector<std::uint16_t>{80}));
  EXPECT_EQ(candidate.recordedSessionPID, 11);
  EXPECT_EQ(candidate.path, "/opt/bin/node");
  EXPECT_EQ(candidate.footprint, 9U);
}

TEST(SafetyInput, NothingMatchesWhatIsNotThere) {
  const HostSnapshot host = snapshot({process(11, 1, "node")});
  EXPECT_EQ(safetyInput(host, {.pid = 99}), SafetyGate::Input{});
  EXPECT_EQ(safetyInput(host, {.port = 99}), SafetyGate::Input{});
  EXPECT_EQ(safetyInput(host, {.sessionPid = 11}), SafetyGate::Input{});
  EXPECT_EQ(safetyInput(host, {}), SafetyGate::Input{});
}

TEST(SafetyInput, KnowsSessionsByEitherPid) {
  const HostSnapshot host = snapshot({agent(11, 1)});
  for (const SafetyTarget& target : {SafetyTarget{.pid = 11}, SafetyTarget{.sessionPid = 11}}) {
    const SafetyGate::Input input = safetyInput(host, target);
    EXPECT_TRUE(input.isSession);
    EXPECT_EQ(input.name, "Claude Code");
    EXPECT_EQ(SafetyGate::decide(input).verdict, SafetyGate::kAskFirst);
  }
}

TEST(SafetyInput, LeavesASessionAloneThatARuleOfTheUserProtects) {
  const HostSnapshot host = snapshot({agent(11, 1), agent(12, 11)}, {.names = {"claude"}});
  for (const SafetyTarget& target : {SafetyTarget{.pid = 11}, SafetyTarget{.sessionPid = 11}}) {
    const MCPSafetyVerdict verdict = SafetyGate::decide(safetyInput(host, target));
    EXPECT_EQ(verdict.verdict, SafetyGate::kLeaveAlone);
    EXPECT_EQ(verdict.reason, "Protected by your rule. Brindle will not stop it.");
  }
}

TEST(SafetyInput, NeverAsksForAnAgentInsideAnothersSession) {
  const HostSnapshot host = snapshot({agent(11, 1), agent(12, 11)});
  const MCPSafetyVerdict verdict = SafetyGate::decide(safetyInput(host, {.pid = 12}));
  EXPECT_EQ(verdict.verdict, SafetyGate::kLeaveAlone);
  EXPECT_EQ(verdict.reason, "Protected by default: AI agents. Brindle will not stop it.");
  EXPECT_EQ(safetyInput(host, {.sessionPid = 12}), SafetyGate::Input{});
}

TEST(SafetyInput, SaysWhoOwnsWhatIsProtected) {
  TrackedProcess other = process(12, 1, "node");
  other.uid = 0;
  const HostSnapshot host = snapshot({process(11, 1, "postgres"), other, process(13, 1, "brindle")});
  EXPECT_EQ(safetyInput(host, {.pid = 11}).protectedReason, "Protected by default: Databases");
  EXPECT_TRUE(safetyInput(host, {.pid = 12}).otherUser);
  EXPECT_TRUE(safetyInput(host, {.pid = 13}).brindle);
}

TEST(ListenerOn, IsTheTopmostOfSeveralAndOnesOwnBeforeOthers) {
  TrackedProcess other = process(10, 1, "node");
  TrackedProcess parent = process(21, 1, "gunicorn");
  TrackedProcess worker = process(20, 21, "gunicorn");
  other.uid = 0;
  other.ports = parent.ports = worker.ports = {8000};
  const HostSnapshot host = snapshot({other, worker, parent});
  ASSERT_NE(listenerOn(host, 8000), nullptr);
  EXPECT_EQ(listenerOn(host, 8000)->pid, 21);
  EXPECT_EQ(listenerOn(host, 8001), nullptr);
}

TEST(ProtectionRules, AreReadFromTheSettings) {
  const auto rules = [](std::string_view text) { return protectionRulesFrom(*parseJson(text)); };
  EXPECT_EQ(rules(R"({"protect": {"names": ["a", "", 7], "paths": ["/x"], "ports": [80, 0, 65536, 65535, 1.5, "8"]}})"),
            (ProtectionRules{{"a"}, {"/x"}, {80, 65535}}));
  for (const char* text : {"[]", "{}", R"({"protect": []})", R"({"protect": {"names": "a", "ports": 80}})"}) {
    EXPECT_EQ(rules(text), ProtectionRules{}) << text;
  }
}

TEST(ProtectionRules, TakeTheStatedNumberOfEach) {
  std::string text = R"({"protect": {"names": ["n")";
  for (std::size_t each = 0; each < kProtectionRuleLimit; ++each) text += R"(,"n")";
  EXPECT_EQ(protectionRulesFrom(*parseJson(text + "]}}")).names.size(), kProtectionRuleLimit);
}

}  // namespace
}  // namespace brindle
