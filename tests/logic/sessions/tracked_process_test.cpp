#include "logic/sessions/tracked_process.h"

#include <gmock/gmock.h>

#include <limits>
#include <string>
#include <vector>

#include "base/json_reader.h"
#include "base/json_writer.h"
#include "logic/sessions/session_activity.h"
#include "logic/sessions/session_child_kind.h"
#include "tests/logic/sessions/sample_processes.h"

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::Pointee;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TrackedProcess fullProcess() {
  return {.pid = 4242,
          .ppid = 4000,
          .uid = 4'000'000'000,
          .name = "node",
          .path = "/opt/node/bin/node",
          .commandLine = "node server.js \"a b\"",
          .cwd = "/home/ada/shop",
          .start = dateFromSeconds(1'772'352'000.25),
          .startTime = 987'654'321'012,
          .footprint = std::numeric_limits<std::uint64_t>::max(),
          .cpuPercent = 12.5,
          .ports = {3000, 3001},
          .role = ProcessRole::ide,
          .agentName = "Codex",
          .framework = "Vite",
          .project = "shop",
          .recordedAgentPID = 3999,
          .recordedAgentName = "Claude Code",
          .recordedAgentAlive = true};
}

std::vector<std::string> keysOf(const JsonObject& object) {
  std::vector<std::string> keys;
  for (const JsonMember& member : object.members()) keys.push_back(member.key);
  return keys;
}

TEST(TrackedProcess, ReadsBackAsWritten) {
  const std::vector<TrackedProcess> snapshot = {fullProcess(), process({.pid = 500, .ppid = 1})};
  const auto document = parseJson(writeJson(encodeSnapshot(snapshot)));
  ASSERT_TRUE(document);
  EXPECT_EQ(decodeSnapshot(*document), snapshot);
}

TEST(TrackedProcess, WritesItsFieldsInDeclarationOrder) {
  EXPECT_THAT(keysOf(encode(fullProcess())),
              ElementsAre("pid", "ppid", "uid", "name", "path", "commandLine", "cwd", "start", "startTime", "footprint",
                          "cpuPercent", "ports", "role", "agentName", "framework", "project", "recordedAgentPID",
                          "recordedAgentName", "recordedAgentAlive"));
}

TEST(TrackedProcess, LeavesAbsentFieldsOut) {
  EXPECT_EQ(writeJson(encode(TrackedProcess{.pid = 1, .name = "a", .ports = {80}})),
            R"({"pid":1,"ppid":0,"uid":0,"name":"a","commandLine":"","start":0,"startTime":0,"footprint":0,)"
            R"("ports":[80],"recordedAgentAlive":false})");
}

TEST(TrackedProcess, IsNoRecordWithoutARequiredField) {
  for (const char* key : {"pid", "ppid", "uid", "name", "commandLine", "start", "startTime", "footprint", "ports",
                          "recordedAgentAlive"}) {
    JsonObject object = encode(fullProcess());
    ASSERT_TRUE(object.erase(key)) << key;
    EXPECT_EQ(decodeTrackedProcess(object), std::nullopt) << key;
  }
}

TEST(TrackedProcess, IsNoRecordWithARequiredFieldOfAnotherType) {
  for (const char* key : {"pid", "ppid", "uid", "name", "commandLine", "start", "startTime", "footprint", "ports",
                          "recordedAgentAlive"}) {
    for (const JsonValue& wrong : {JsonValue(nullptr), JsonValue(JsonObject{}), JsonValue(JsonArray{"x"})}) {
      JsonObject object = encode(fullProcess());
      object.set(key, wrong);
      EXPECT_EQ(decodeTrackedProcess(object), std::nullopt) << key << writeJson(wrong);
    }
  }
}

TEST(TrackedProcess, TakesAnOptionalFieldOfAnotherTypeForAbsent) {
  JsonObject object = encode(fullProcess());
  for (const char* key : {"path", "cwd", "cpuPercent", "role", "agentName", "framework", "project", "recordedAgentPID",
                          "recordedAgentName"}) {
    object.set(key, JsonArray{});
  }
  TrackedProcess expected = fullProcess();
  expected.path = expected.cwd = expected.agentName = expected.framework = expected.project =
      expected.recordedAgentName = std::nullopt;
  expected.cpuPercent = std::nullopt;
  expected.role = std::nullopt;
  expected.recordedAgentPID = std::nullopt;
  EXPECT_EQ(decodeTrackedProcess(object), expected);
}

TEST(TrackedProcess, TakesAnUnknownRoleForAbsentAndIgnoresUnknownKeys) {
  JsonObject object = encode(fullProcess());
  object.set("role", "Agent");
  object.set("colour", "red");
  TrackedProcess expected = fullProcess();
  expected.role = std::nullopt;
  EXPECT_EQ(decodeTrackedProcess(object), expected);
}

TEST(TrackedProcess, RefusesNumbersJustOutOfRange) {
  const struct {
    const char* key;
    const char* last;
    const char* beyond;
  } rows[] = {{"pid", "2147483647", "2147483648"},
              {"ppid", "-2147483648", "-2147483649"},
              {"uid", "4294967295", "4294967296"},
              {"uid", "0", "-1"},
              {"startTime", "9223372036854775807", "9223372036854775808"},
              {"footprint", "18446744073709551615", "18446744073709551616"},
              {"footprint", "0", "-1"}};
  for (const auto& row : rows) {
    JsonObject object = encode(fullProcess());
    object.set(row.key, JsonNumber::fromText(row.last));
    EXPECT_TRUE(decodeTrackedProcess(object)) << row.key << row.last;
    object.set(row.key, JsonNumber::fromText(row.beyond));
    EXPECT_FALSE(decodeTrackedProcess(object)) << row.key << row.beyond;
  }
}

TEST(TrackedProcess, WritesNoNumberThatIsNotFinite) {
  TrackedProcess odd = fullProcess();
  odd.cpuPercent = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(encode(odd).find("cpuPercent"), nullptr);
  odd.start = dateFromSeconds(kInfinity);
  EXPECT_EQ(encode(odd).find("start"), nullptr);
  EXPECT_EQ(decodeTrackedProcess(encode(odd)), std::nullopt);
}

TEST(TrackedProcess, HashesEqualRecordsAlike) {
  EXPECT_EQ(std::hash<TrackedProcess>{}(fullProcess()), std::hash<TrackedProcess>{}(fullProcess()));
  EXPECT_NE(std::hash<TrackedProcess>{}(fullProcess()), std::hash<TrackedProcess>{}(process({.pid = 4242})));
}

TEST(TrackedProcess, GroupsByParentInInputOrder) {
  const std::vector<TrackedProcess> processes = {process({.pid = 30, .ppid = 1}), process({.pid = 10, .ppid = 7}),
                                                 process({.pid = 20, .ppid = 1}), process({.pid = 30, .ppid = 1})};
  auto groups = groupByParent(processes);
  ASSERT_EQ(groups.size(), 2U);
  EXPECT_THAT(groups.at(1), ElementsAre(&processes[0], &processes[2], &processes[3]));
  EXPECT_THAT(groups.at(7), ElementsAre(Pointee(processes[1])));
  EXPECT_TRUE(groupByParent({}).empty());
}

TEST(TrackedProcess, RefusesASnapshotThatIsNoArrayOfRecords) {
  EXPECT_EQ(decodeSnapshot(JsonObject{}), std::nullopt);
  EXPECT_EQ(decodeSnapshot(nullptr), std::nullopt);
  EXPECT_EQ(decodeSnapshot(JsonArray{encode(fullProcess()), 1}), std::nullopt);
  EXPECT_EQ(decodeSnapshot(JsonArray{JsonObject{}}), std::nullopt);
  EXPECT_EQ(decodeSnapshot(JsonArray{}), std::vector<TrackedProcess>{});
}

TEST(TrackedProcess, RefusesASnapshotWhoseFootprintsOverflowTogether) {
  std::vector<TrackedProcess> snapshot = {process({.pid = 500}), process({.pid = 501})};
  snapshot[0].footprint = std::numeric_limits<std::uint64_t>::max() - 1;
  snapshot[1].footprint = 1;
  EXPECT_TRUE(decodeSnapshot(encodeSnapshot(snapshot)));
  snapshot[1].footprint = 2;
  EXPECT_FALSE(decodeSnapshot(encodeSnapshot(snapshot)));
}

TEST(TrackedProcess, RefusesASnapshotWithAStartBeyondTheFarthest) {
  std::vector<TrackedProcess> snapshot = {process({.pid = 500})};
  for (const double sign : {1.0, -1.0}) {
    snapshot[0].start = dateFromSeconds(sign * kFarthestStart);
    EXPECT_TRUE(decodeSnapshot(encodeSnapshot(snapshot)));
    snapshot[0].start = dateFromSeconds(sign * (kFarthestStart + 1));
    EXPECT_FALSE(decodeSnapshot(encodeSnapshot(snapshot)));
  }
}

template <typename E>
std::vector<std::string> textsRoundTripped() {
  std::vector<std::string> texts;
  for (const auto& row : allCases<E>()) {
    EXPECT_EQ(enumFrom<E>(textOf(row.value)), row.value);
    texts.emplace_back(row.text);
  }
  return texts;
}

TEST(ProcessRole, HasItsTextsInOrder) {
  EXPECT_THAT(textsRoundTripped<ProcessRole>(), ElementsAre("agent", "ide", "terminal"));
}

TEST(SessionChildKind, HasItsTextsInOrder) {
  EXPECT_THAT(textsRoundTripped<SessionChildKind>(), ElementsAre("mcp", "devServer", "testRunner", "browser", "other"));
}

TEST(SessionActivity, HasItsTextsInOrder) {
  EXPECT_THAT(textsRoundTripped<SessionActivity>(), ElementsAre("working", "waiting", "idle"));
}

}  // namespace
}  // namespace brindle
