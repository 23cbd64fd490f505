// The report commands as they are called: documents, exit codes and remarks, on recorded snapshots.
#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>

#include "base/json_writer.h"
#include "cli/commands.h"
#include "logic/sessions/tracked_process.h"
#include "tests/base/temporary_folder.h"
#include "tests/cli/recorded_context.h"

namespace brindle {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr double kNow = 1'772'352'000;
constexpr std::uint32_t kUser = 1000;

/// A process of the user that has run for `age` seconds.
TrackedProcess process(std::int32_t pid, double age, std::string name) {
  return {.pid = pid,
          .ppid = 1,
          .uid = kUser,
          .name = name,
          .path = "/opt/bin/" + name,
          .commandLine = "/opt/bin/" + name + " --run",
          .start = dateFromSeconds(kNow - age),
          .footprint = 1'000'000};
}

TrackedProcess listener(std::int32_t pid, double age, int port) {
  TrackedProcess made = process(pid, age, "node");
  made.ports = {port};
  return made;
}

TrackedProcess agent(std::int32_t pid, double age) {
  TrackedProcess made = process(pid, age, "claude");
  made.role = ProcessRole::agent;
  made.agentName = "Claude Code";
  return made;
}

struct ReportCommands : testing::Test {
  void record(const std::vector<TrackedProcess>& processes) { write(writeJson(JsonValue(encodeSnapshot(processes)))); }
  void write(const std::string& text) { std::ofstream(folder.file("s.json"), std::ios::binary) << text; }
  int run(const Command& command, std::map<std::string, std::string, std::less<>> options = {}) {
    options.insert(
        {{"--snapshot", folder.file("s.json")}, {"--now", "1772352000"}, {"--uid", "1000"}, {"--rules", "linux"}});
    return call(command, std::move(options));
  }
  int call(const Command& command, std::map<std::string, std::string, std::less<>> options) {
    recorded.results.text.clear();
    recorded.remarks.text.clear();
    return command.run(Arguments{.options = std::move(options)}, recorded.context);
  }
  [[nodiscard]] const std::string& results() const { return recorded.results.text; }
  [[nodiscard]] const std::string& remarks() const { return recorded.remarks.text; }

  TemporaryFolder folder;
  RecordedContext recorded;
};

TEST_F(ReportCommands, StatusIsAlwaysAnAnswer) {
  record({});
  EXPECT_EQ(run(kStatusCommand), 0);
  EXPECT_EQ(results(), "All clear.\n");
  record({agent(500, 60), listener(510, 60, 3000)});
  EXPECT_EQ(run(kStatusCommand), 0);
  EXPECT_EQ(results(), "1 dev server and 1 agent session hold 2.0 MB and port 3000.\n");
}

TEST_F(ReportCommands, JsonIsExactlyTheDocumentAndALineEnd) {
  record({listener(510, 60, 3000)});
  EXPECT_EQ(run(kPortsCommand, {{"--json", ""}}), 0);
  EXPECT_EQ(results(), R"({
  "command" : "ports",
  "listeners" : [
    {
      "name" : "node",
      "ownedByCurrentUser" : true,
      "pid" : 510,
      "port" : 3000
    }
  ],
  "schema" : 1
}
)");
  EXPECT_THAT(remarks(), IsEmpty());
}

TEST_F(ReportCommands, SettingsThatCannotBeReadAreNamedInOneLineAndReplacedByTheDefaults) {
  record({listener(510, 60, 3000)});
  recorded.variables["BRINDLE_DATA_DIR"] = folder.path();
  std::ofstream(folder.file("settings.json")) << "{ broken";
  for (const Command* command : {&kStatusCommand, &kPortsCommand}) {
    EXPECT_EQ(run(*command), 0) << command->name;
    EXPECT_EQ(remarks(), "brindle: cannot read the settings, taking the defaults: " + folder.file("settings.json") +
                             ": expected a JSON object\n");
    EXPECT_THAT(results(), HasSubstr("3000"));
  }
  std::ofstream(folder.file("settings.json")) << "{}";
  EXPECT_EQ(run(kStatusCommand), 0);
  EXPECT_THAT(remarks(), IsEmpty());
}

TEST_F(ReportCommands, NothingFoundIsANegativeAnswerWithItsDocument) {
  record({process(500, 60, "make")});
  for (const Command* command : {&kPortsCommand, &kAgentsCommand, &kIdleCommand, &kGhostsCommand}) {
    EXPECT_EQ(run(*command), 1) << command->name;
    EXPECT_THAT(results(), Not(IsEmpty())) << command->name;
    EXPECT_EQ(run(*command, {{"--json", ""}}), 1) << command->name;
    EXPECT_THAT(results(), HasSubstr("\"command\" : \"" + std::string(command->name) + "\"")) << command->name;
  }
}

TEST_F(ReportCommands, AgentsTellUptimeActivityAndWhatWasStarted) {
  TrackedProcess server = listener(510, 30, 3000);
  server.ppid = 500;
  record({agent(500, 90.9), server});
  EXPECT_EQ(run(kAgentsCommand, {{"--json", ""}}), 0);
  for (const char* part : {"\"uptimeSeconds\" : 90\n", "\"activity\" : \"working\"", "\"kind\" : \"devServer\"",
                           "\"memoryBytes\" : 2000000", "\"leftBehind\" : [\n\n  ]"}) {
    EXPECT_THAT(results(), HasSubstr(part));
  }
}

TEST_F(ReportCommands, WhatWasLeftBehindAloneIsFoundWithItsWholeCommandLine) {
  TrackedProcess ghost = process(900, 60, "node");
  ghost.recordedAgentName = "Codex";
  record({ghost});
  EXPECT_EQ(run(kAgentsCommand, {{"--json", ""}}), 0);
  EXPECT_THAT(results(), HasSubstr(R"("command" : "/opt/bin/node --run")"));
  EXPECT_THAT(results(), HasSubstr(R"("origin" : "Codex (exited), by Brindle's record")"));
  EXPECT_EQ(run(kGhostsCommand, {{"--json", ""}}), 0);
  EXPECT_THAT(results(), HasSubstr(R"("origin" : "Codex (exited), by Brindle's record")"));
}

TEST_F(ReportCommands, IdlePlansFromTwoHoursOnWhenNothingElseIsAsked) {
  record({listener(510, 7199.75, 3000)});
  EXPECT_EQ(run(kIdleCommand), 1);
  EXPECT_EQ(results(), "Nothing idle to stop.\n");
  record({listener(510, 7200, 3000)});
  EXPECT_EQ(run(kIdleCommand, {{"--json", ""}}), 0);
  EXPECT_THAT(results(), HasSubstr("\"idle\" : true"));
  EXPECT_THAT(results(), HasSubstr("\"minimumAgeSeconds\" : 7200"));
  EXPECT_THAT(results(), HasSubstr("\"summary\" : \"Stopping these frees 1.0 MB and ports 3000.\""));
}

TEST_F(ReportCommands, IdleTakesTheAgeThatIsAskedFor) {
  record({listener(510, 90, 3000)});
  EXPECT_EQ(run(kIdleCommand, {{"--older-than", "90s"}}), 0);
  EXPECT_EQ(run(kIdleCommand, {{"--older-than", "91s"}}), 1);
}

TEST_F(ReportCommands, IdleSkipsOldProtectedOnesWithTheReasonAndNeverShowsOtherUsers) {
  TrackedProcess database = process(600, 1e6, "postgres");
  database.ports = {5432};
  TrackedProcess others = listener(700, 1e6, 8080);
  others.uid = 0;
  record({database, others});
  EXPECT_EQ(run(kIdleCommand, {{"--json", ""}}), 0);
  EXPECT_THAT(results(), HasSubstr("\"idle\" : false"));
  EXPECT_THAT(results(), HasSubstr("\"protected\" : \"Protected by default: Databases\""));
  EXPECT_THAT(results(), HasSubstr("\"summary\" : \"Nothing idle to stop.\""));
  EXPECT_THAT(results(), Not(HasSubstr("700")));
}

TEST_F(ReportCommands, AgesThatAreNoneAreOneLineAndWrongUsage) {
  record({listener(510, 1e6, 3000)});
  for (const char* age : {"x", "90", "-1h", "1.5h", "1h 2m"}) {
    EXPECT_EQ(run(kIdleCommand, {{"--older-than", age}}), 2) << age;
    EXPECT_THAT(results(), IsEmpty());
    EXPECT_THAT(remarks(), HasSubstr("--older-than " + std::string(age) + ": expected a duration")) << age;
  }
}

TEST_F(ReportCommands, FilesThatAreNoSnapshotsAreOneLineAndAFailure) {
  for (const char* text : {"", "{}", "[1]", R"([{"pid":1}])"}) {
    write(text);
    for (const Command* command : {&kStatusCommand, &kPortsCommand, &kAgentsCommand, &kIdleCommand, &kGhostsCommand}) {
      EXPECT_EQ(run(*command), 2) << command->name << text;
      EXPECT_THAT(results(), IsEmpty());
      EXPECT_EQ(std::count(remarks().begin(), remarks().end(), '\n'), 1) << remarks();
    }
  }
}

TEST_F(ReportCommands, NothingRecordedIsEverStopped) {
  record({listener(510, 1e6, 3000)});
  for (const Command* command : {&kIdleCommand, &kGhostsCommand}) {
    EXPECT_EQ(run(*command, {{"--stop", ""}, {"--yes", ""}, {"--dry-run", ""}}), 2) << command->name;
    for (const char* option : {"--json", "--watch", "--now", "--uid", "--rules"}) {
      EXPECT_EQ(call(*command, {{"--stop", ""}, {"--dry-run", ""}, {option, "1"}}), 2) << command->name << option;
      EXPECT_THAT(results(), IsEmpty());
    }
  }
}

TEST_F(ReportCommands, NothingRecordedIsRememberedAsOfThisMachine) {
  recorded.variables["BRINDLE_DATA_DIR"] = folder.file("state");
  TrackedProcess server = listener(510, 30, 3000);
  server.ppid = 500;
  record({agent(500, 60), server});
  for (const Command* command : {&kStatusCommand, &kAgentsCommand, &kIdleCommand, &kGhostsCommand}) (void)run(*command);
  EXPECT_EQ(folder.entries(), 1U);
}

TEST_F(ReportCommands, TheRulesDecideWhoIsSeen) {
  TrackedProcess small = agent(40, 60);
  small.path = "/usr/bin/node";
  record({small});
  EXPECT_EQ(run(kAgentsCommand, {{"--rules", "linux"}}), 0);
  EXPECT_EQ(run(kAgentsCommand, {{"--rules", "macos"}}), 1);
}

TEST_F(ReportCommands, ASnapshotReadsBackAsItWasPrinted) {
  record({agent(500, 60), listener(510, 60, 3000)});
  ASSERT_EQ(run(kSnapshotCommand), 0);
  const std::string printed = results();
  write(printed);
  EXPECT_EQ(run(kSnapshotCommand), 0);
  EXPECT_EQ(results(), printed);
}

}  // namespace
}  // namespace brindle
