#include "inventory/ownership_record.h"

#include <gtest/gtest.h>

namespace brindle {
namespace {

OwnershipRecord sample() { return {"b00t", 501, 12345, 400, 9000, "Claude Code"}; }

TEST(OwnershipRecord, ALineReadsBackAsTheRecord) {
  const std::string line = ownershipLine(sample());
  EXPECT_EQ(line,
            "{\"boot\":\"b00t\",\"pid\":501,\"startTime\":12345,\"agentPid\":400,\"agentStartTime\":9000,"
            "\"agent\":\"Claude Code\"}\n");
  EXPECT_EQ(ownershipFromLine(line), sample());
}

TEST(OwnershipRecord, NamesAreCutSoThatEveryLineCanBeReadBack) {
  OwnershipRecord record = sample();
  record.agent = std::string(5000, '"');
  record.boot = std::string(5000, 'b');
  const std::string line = ownershipLine(record);
  EXPECT_LE(line.size(), kOwnershipLineLimit);
  EXPECT_EQ(ownershipFromLine(line)->agent, std::string(64, '"'));
}

TEST(OwnershipRecord, PidsBelowTwoAreNoRecord) {
  OwnershipRecord record = sample();
  record.pid = 2;
  EXPECT_TRUE(ownershipFromLine(ownershipLine(record)));
  record.pid = 1;
  EXPECT_EQ(ownershipFromLine(ownershipLine(record)), std::nullopt);
  record = sample();
  record.agentPid = 1;
  EXPECT_EQ(ownershipFromLine(ownershipLine(record)), std::nullopt);
}

TEST(OwnershipRecord, NoPrefixOfALineIsARecord) {
  const std::string line = ownershipLine(sample());
  for (std::size_t length = 0; length + 2 < line.size(); ++length) {
    EXPECT_EQ(ownershipFromLine(std::string_view(line).substr(0, length)), std::nullopt) << length;
  }
}

TEST(OwnershipRecord, ALineOverTheLimitIsNoRecord) {
  std::string line = ownershipLine(sample());
  line.insert(line.size() - 1, kOwnershipLineLimit - line.size(), ' ');
  ASSERT_EQ(line.size(), kOwnershipLineLimit);
  EXPECT_EQ(ownershipFromLine(line), sample());
  line.insert(line.size() - 1, 1, ' ');
  EXPECT_EQ(ownershipFromLine(line), std::nullopt);
}

TEST(OwnershipRecord, MembersOfTheWrongTypeAreNoRecord) {
  for (const char* line :
       {"[]", "7", "{}", R"({"boot":1,"pid":501,"startTime":1,"agentPid":4,"agentStartTime":1,"agent":"x"})",
        R"({"boot":"b","pid":5.5,"startTime":1,"agentPid":4,"agentStartTime":1,"agent":"x"})"}) {
    EXPECT_EQ(ownershipFromLine(line), std::nullopt) << line;
  }
}

}  // namespace
}  // namespace brindle
