#include "logic/reports/report_documents.h"

#include <gmock/gmock.h>

#include <limits>

#include "base/json_reader.h"
#include "logic/reports/cli_reports.h"

namespace brindle {
namespace {

using testing::ElementsAre;

std::vector<std::string> keysOf(const JsonValue& value) {
  std::vector<std::string> keys;
  for (const JsonMember& member : value.object()->members()) keys.push_back(member.key);
  return keys;
}

/// The document as a reader of its text sees it.
template <typename Document>
JsonValue read(const Document& document) {
  return parseJson(CLIReports::jsonText(document)).value_or(JsonValue(JsonObject{}));
}

TEST(ReportDocuments, APlainListenerHasExactlyFourKeysInSortedOrder) {
  const JsonValue document = read(PortsDocument{.listeners = {{.port = 80, .pid = 1, .name = "a"}}});
  EXPECT_THAT(keysOf(document.object()->find("listeners")->array()->front()),
              ElementsAre("name", "ownedByCurrentUser", "pid", "port"));
}

TEST(ReportDocuments, PortsAreWrittenByteForByte) {
  const PortsDocument document{.listeners = {{.port = 3000,
                                              .pid = 4242,
                                              .name = "/usr/bin/node",
                                              .project = "shop",
                                              .ownedByCurrentUser = true,
                                              .protectedReason = "Your terminal shell"}}};
  EXPECT_EQ(CLIReports::jsonText(document), R"({
  "command" : "ports",
  "listeners" : [
    {
      "name" : "/usr/bin/node",
      "ownedByCurrentUser" : true,
      "pid" : 4242,
      "port" : 3000,
      "project" : "shop",
      "protected" : "Your terminal shell"
    }
  ],
  "schema" : 1
})");
}

TEST(ReportDocuments, EmptyListsAreWrittenWithABlankLine) {
  EXPECT_EQ(CLIReports::jsonText(PortsDocument{}), R"({
  "command" : "ports",
  "listeners" : [

  ],
  "schema" : 1
})");
}

TEST(ReportDocuments, StatusHasAllItsKeysSorted) {
  const JsonValue document = read(StatusDocument{.memoryBytes = std::numeric_limits<std::uint64_t>::max()});
  EXPECT_THAT(keysOf(document), ElementsAre("agentSessions", "command", "devServers", "ghosts", "memoryBytes", "ports",
                                            "schema", "summary"));
  EXPECT_EQ(*document.object()->find("command"), JsonValue("status"));
  EXPECT_EQ(*document.object()->find("schema"), JsonValue(1));
  EXPECT_EQ(document.object()->find("memoryBytes")->number()->text(), "18446744073709551615");
}

TEST(ReportDocuments, AgentsHaveAllTheirKeysSortedAndNoAbsentOnes) {
  const AgentsDocument agents{
      .sessions = {{.pid = 1, .agent = "Codex", .project = "p", .started = {AgentChildDocument{.pid = 2}}}, {.pid = 3}},
      .leftBehind = {LeftBehindDocument{.pid = 4, .command = "node /srv/x.js"}}};
  const JsonValue document = read(agents);
  EXPECT_THAT(keysOf(document), ElementsAre("command", "leftBehind", "schema", "sessions"));
  const JsonArray& sessions = *document.object()->find("sessions")->array();
  EXPECT_THAT(keysOf(sessions.at(0)),
              ElementsAre("activity", "agent", "memoryBytes", "pid", "ports", "project", "started", "uptimeSeconds"));
  EXPECT_EQ(sessions.at(1).object()->find("project"), nullptr);
  EXPECT_THAT(keysOf(sessions.at(0).object()->find("started")->array()->front()),
              ElementsAre("kind", "memoryBytes", "name", "pid", "ports"));
  EXPECT_THAT(keysOf(document.object()->find("leftBehind")->array()->front()),
              ElementsAre("command", "memoryBytes", "origin", "pid", "ports"));
}

TEST(ReportDocuments, GhostsHaveAllTheirKeysSortedAndBothLists) {
  const GhostsDocument ghosts{.leftBehind = {{.pid = 4, .command = "vite"}}, .likely = {{.pid = 5, .origin = "Codex"}}};
  const JsonValue document = read(ghosts);
  EXPECT_THAT(keysOf(document), ElementsAre("command", "leftBehind", "likely", "schema"));
  EXPECT_EQ(*document.object()->find("command"), JsonValue("ghosts"));
  EXPECT_EQ(*document.object()->find("schema"), JsonValue(1));
  for (const auto& [list, pid] : {std::pair("leftBehind", 4), std::pair("likely", 5)}) {
    const JsonArray& rows = *document.object()->find(list)->array();
    ASSERT_EQ(rows.size(), 1U) << list;
    EXPECT_THAT(keysOf(rows.at(0)), ElementsAre("command", "memoryBytes", "origin", "pid", "ports")) << list;
    EXPECT_EQ(*rows.at(0).object()->find("pid"), JsonValue(pid)) << list;
  }
}

TEST(ReportDocuments, ACommandLineKeepsItsSlashesWithoutBackslashes) {
  const AgentsDocument document{.leftBehind = {{.command = "node /srv/a/b.js"}}};
  EXPECT_THAT(CLIReports::jsonText(document), testing::HasSubstr(R"("command" : "node /srv/a/b.js")"));
}

TEST(ReportDocuments, IdleHasAllItsKeysSortedAndNoAbsentOnes) {
  const JsonValue document =
      read(IdleDocument{.stop = {IdleRow{.pid = 1}},
                        .skipped = {IdleRow{.pid = 2, .project = "p", .protectedReason = "Protected by your rule"}}});
  EXPECT_THAT(keysOf(document),
              ElementsAre("command", "idle", "minimumAgeSeconds", "schema", "skipped", "stop", "summary"));
  EXPECT_EQ(*document.object()->find("command"), JsonValue("idle"));
  EXPECT_THAT(keysOf(document.object()->find("stop")->array()->front()),
              ElementsAre("memoryBytes", "name", "pid", "ports", "uptimeSeconds"));
  EXPECT_THAT(keysOf(document.object()->find("skipped")->array()->front()),
              ElementsAre("memoryBytes", "name", "pid", "ports", "project", "protected", "uptimeSeconds"));
}

}  // namespace
}  // namespace brindle
