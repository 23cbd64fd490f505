#include "inventory/tracked_processes.h"

#include <gtest/gtest.h>

#include "base/text.h"

namespace brindle {
namespace {

constexpr std::uint32_t kUser = 1000;

std::vector<TrackedProcess> track(const std::vector<ProcessFacts>& facts,
                                  const std::vector<ProcessOrigin>& origins = {}) {
  ProjectFinder projects("/home/ana", [](const std::string& path) -> std::optional<std::string> {
    if (path == "/srv/shop/package.json") return R"({"name":"shop"})";
    return std::nullopt;
  });
  return trackedProcesses(facts, origins, kUser, projects);
}

TEST(TrackedProcesses, CarryEverythingThatWasSeen) {
  const ProcessFacts facts{.pid = 500,
                           .ppid = 400,
                           .uid = kUser,
                           .name = "node",
                           .path = "/usr/bin/node",
                           .arguments = {"node", "/x/.bin/vite"},
                           .cwd = "/srv/shop/web",
                           .start = dateFromSeconds(1000.5),
                           .startTime = 77,
                           .footprint = 4096,
                           .cpuPercent = 1.5,
                           .ports = {5173}};
  const TrackedProcess expected{.pid = 500,
                                .ppid = 400,
                                .uid = kUser,
                                .name = "node",
                                .path = "/usr/bin/node",
                                .commandLine = "node /x/.bin/vite",
                                .cwd = "/srv/shop/web",
                                .start = dateFromSeconds(1000.5),
                                .startTime = 77,
                                .footprint = 4096,
                                .cpuPercent = 1.5,
                                .ports = {5173},
                                .framework = "Vite",
                                .project = "shop"};
  EXPECT_EQ(track({facts}), std::vector{expected});
}

TEST(TrackedProcesses, RolesAreOfAgentsIdesAndTerminalsOnly) {
  const auto role = [](std::string program) {
    return track({{.pid = 5, .name = program, .path = "/usr/bin/" + program, .arguments = {program}}}).at(0).role;
  };
  EXPECT_EQ(role("claude"), ProcessRole::agent);
  EXPECT_EQ(role("nvim"), ProcessRole::ide);
  EXPECT_EQ(role("kitty"), ProcessRole::terminal);
  EXPECT_EQ(role("postgres"), std::nullopt);
  EXPECT_EQ(role("node"), std::nullopt);
}

TEST(TrackedProcesses, AgentsHaveTheirDisplayName) {
  const auto tracked = track({{.pid = 5, .name = "claude", .arguments = {"claude"}}, {.pid = 6, .name = "vim"}});
  EXPECT_EQ(tracked[0].agentName, "Claude Code");
  EXPECT_EQ(tracked[1].agentName, std::nullopt);
}

TEST(TrackedProcesses, AListenerTakesItsWrappersFramework) {
  const auto tracked =
      track({{.pid = 10, .ppid = 1, .path = "/usr/bin/node", .arguments = {"node", "/x/.bin/nodemon", "s.js"}},
             {.pid = 11, .ppid = 10, .path = "/usr/bin/node", .arguments = {"node", "s.js"}, .ports = {4100}},
             {.pid = 12, .ppid = 10, .path = "/usr/bin/node", .arguments = {"node", "helper.js"}}});
  EXPECT_EQ(tracked[1].framework, "nodemon");
  EXPECT_EQ(tracked[2].framework, std::nullopt);
}

TEST(TrackedProcesses, TiesBecomeRecordedAgents) {
  const auto tracked = track({{.pid = 10}, {.pid = 11}, {.pid = 12}},
                             {{10, OriginTie::owned, OriginEvidence::record, "Codex", 400, true},
                              {11, OriginTie::leftBehind, OriginEvidence::environment, "Amp", std::nullopt, true},
                              {12, OriginTie::likely, OriginEvidence::session, "Claude Code", std::nullopt, true}});
  EXPECT_EQ(tracked[0].recordedAgentPID, 400);
  EXPECT_TRUE(tracked[0].recordedAgentAlive);
  EXPECT_EQ(tracked[1].recordedAgentPID, std::nullopt);
  EXPECT_EQ(tracked[1].recordedAgentName, "Amp");
  EXPECT_FALSE(tracked[1].recordedAgentAlive);
  EXPECT_EQ(tracked[2].recordedAgentName, std::nullopt);
}

TEST(TrackedProcesses, TextsAreValidWhateverTheProcessSays) {
  const auto tracked =
      track({{.pid = 5, .name = "a\xFF", .path = "/x/\xFE", .arguments = {"\xC3", "b"}, .cwd = "/\xFF"}});
  EXPECT_TRUE(isValidUtf8(tracked[0].name));
  EXPECT_TRUE(isValidUtf8(*tracked[0].path));
  EXPECT_TRUE(isValidUtf8(tracked[0].commandLine));
  EXPECT_TRUE(isValidUtf8(*tracked[0].cwd));
}

TEST(TrackedProcesses, OnlyTheCurrentUsersFoldersAreAskedForProjects) {
  const auto tracked =
      track({{.pid = 5, .uid = 1001, .cwd = "/srv/shop"}, {.pid = 6, .uid = kUser, .cwd = "/srv/shop"}});
  EXPECT_EQ(tracked[0].project, std::nullopt);
  EXPECT_EQ(tracked[1].project, "shop");
}

TEST(ShownName, CompletesWhatTheKernelHasCut) {
  EXPECT_EQ(shownName({.name = "gnome-terminal-", .path = "/usr/libexec/gnome-terminal-server"}),
            "gnome-terminal-server");
  EXPECT_EQ(shownName({.name = "flask", .path = "/usr/bin/python3.11"}), "flask");
  EXPECT_EQ(shownName({.name = "next-server (v1", .path = "/usr/bin/node"}), "next-server (v1");
}

TEST(FactsOf, KeepWhatTheRulesNeed) {
  const ProcessFacts facts =
      factsOf({.pid = 5, .name = "node", .path = "/usr/bin/node", .commandLine = "node  srv.js dev"});
  EXPECT_EQ(facts.arguments, (std::vector<std::string>{"node", "srv.js", "dev"}));
  EXPECT_EQ(facts.path, "/usr/bin/node");
}

}  // namespace
}  // namespace brindle
