#include "inventory/framework_recognition.h"

#include <gtest/gtest.h>

#include <set>

#include "inventory/framework_table.h"
#include "recorded_table.h"

namespace brindle {
namespace {

using testing::chainOf;
using testing::readRecordedTable;
using testing::RecordedRow;

std::optional<std::string_view> frameworkOf(const std::vector<ProcessFacts>& chain) {
  std::vector<const ProcessFacts*> pointers;
  for (const ProcessFacts& facts : chain) pointers.push_back(&facts);
  if (!chain.front().ports.empty()) return frameworkOfListener(pointers);
  return recogniseFramework(identityOf(chain.front()));
}

TEST(FrameworkRecognition, NamesTheServerThatAWorkerWithoutArgumentsBelongsTo) {
  const std::vector<ProcessFacts> chain{
      {.pid = 12, .path = "/usr/bin/node", .arguments = {"next-server (v15.5.29)"}, .ports = {3000}},
      {.pid = 11, .path = "/usr/bin/node", .arguments = {"node", "/srv/shop/node_modules/.bin/next", "dev"}}};
  EXPECT_EQ(frameworkOf(chain), "Next.js");
}

TEST(FrameworkRecognition, TellsEveryRecordedProcessApart) {
  const std::vector<RecordedRow> rows = readRecordedTable("dev_servers.table");
  ASSERT_GT(rows.size(), 55U);
  for (const RecordedRow& row : rows) {
    EXPECT_EQ(frameworkOf(chainOf(rows, row.facts.pid)).value_or("-"), row.expected) << "pid " << row.facts.pid;
  }
}

TEST(FrameworkRecognition, TheRecordingsHoldEveryKnownFrameworkButStaticServers) {
  std::set<std::string> seen;
  for (const RecordedRow& row : readRecordedTable("dev_servers.table")) seen.insert(row.expected);
  for (const FrameworkRow& row : frameworkTable()) {
    if (row.name == "static server") continue;
    EXPECT_TRUE(seen.contains(std::string(row.name))) << row.name;
  }
}

TEST(FrameworkRecognition, AListenerDoesNotTakeTheFrameworkFromBeyondAnAgent) {
  const std::vector<ProcessFacts> chain{
      {.pid = 13, .path = "/usr/bin/node", .arguments = {"node", "srv.js"}, .ports = {4000}},
      {.pid = 12, .path = "/usr/bin/claude", .arguments = {"claude"}},
      {.pid = 11, .path = "/usr/bin/node", .arguments = {"node", "/srv/node_modules/.bin/nodemon", "x"}}};
  EXPECT_EQ(frameworkOf(chain), std::nullopt);
}

TEST(FrameworkRecognition, AListenerDoesNotTakeTheFrameworkFromBeyondATerminalsShell) {
  const std::vector<ProcessFacts> chain{
      {.pid = 13, .path = "/usr/bin/node", .arguments = {"node", "srv.js"}, .ports = {4000}},
      {.pid = 12, .path = "/usr/bin/bash", .arguments = {"-bash"}, .hasTerminal = true},
      {.pid = 11, .path = "/usr/bin/node", .arguments = {"node", "/srv/node_modules/.bin/nodemon", "x"}}};
  EXPECT_EQ(frameworkOf(chain), std::nullopt);
}

TEST(FrameworkRecognition, StaticServersAreNamedWhoeverRunsThem) {
  EXPECT_EQ(frameworkOf({{.path = "/usr/bin/node", .arguments = {"node", "/x/.bin/http-server", "-p", "9000"}}}),
            "static server");
}

TEST(FrameworkRecognition, AnEmptyChainHasNoFramework) { EXPECT_EQ(frameworkOfListener({}), std::nullopt); }

TEST(FrameworkTable, NamesNoFrameworkWithoutAProgram) {
  for (const FrameworkRow& row : frameworkTable()) {
    EXPECT_FALSE(row.name.empty());
    EXPECT_FALSE(row.programs.empty()) << row.name;
  }
}

}  // namespace
}  // namespace brindle
