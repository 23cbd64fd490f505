#include "logic/mcp/mcp_quit_request.h"

#include <gtest/gtest.h>

#include "base/json_writer.h"

namespace brindle {
namespace {

MCPQuitRequest sample() {
  return {.id = "A-1",
          .time = dateFromSeconds(1'772'352'000),
          .kind = "session",
          .pid = 1,
          .port = 2,
          .sessionPID = 3,
          .note = "done",
          .status = "pending"};
}

TEST(MCPQuitRequest, ReadsBackAsWritten) { EXPECT_EQ(decodeMCPQuitRequest(encode(sample())), sample()); }

TEST(MCPQuitRequest, WritesItsFieldsInOrderWithTheTimeAsText) {
  EXPECT_EQ(writeJson(encode(sample())), R"({"id":"A-1","time":"2026-03-01T08:00:00Z","kind":"session","pid":1,)"
                                         R"("port":2,"sessionPID":3,"note":"done","status":"pending"})");
}

TEST(MCPQuitRequest, LeavesAbsentFieldsOut) {
  const MCPQuitRequest bare{.id = "A", .time = dateFromSeconds(0), .kind = "pid", .status = "pending"};
  EXPECT_EQ(writeJson(encode(bare)), R"({"id":"A","time":"1970-01-01T00:00:00Z","kind":"pid","status":"pending"})");
  EXPECT_EQ(decodeMCPQuitRequest(encode(bare)), bare);
}

TEST(MCPQuitRequest, IsNoRecordWithoutARequiredFieldOrWithOneOfAnotherType) {
  for (const char* key : {"id", "time", "kind", "status"}) {
    for (const JsonValue& wrong : {JsonValue(nullptr), JsonValue(1), JsonValue(JsonArray{})}) {
      JsonObject object = encode(sample());
      object.set(key, wrong);
      EXPECT_EQ(decodeMCPQuitRequest(object), std::nullopt) << key;
    }
    JsonObject object = encode(sample());
    ASSERT_TRUE(object.erase(key));
    EXPECT_EQ(decodeMCPQuitRequest(object), std::nullopt) << key;
  }
}

TEST(MCPQuitRequest, IsNoRecordWithATimeThatIsNoIsoText) {
  for (const char* time : {"", "yesterday", "2026-03-01", "2026-03-01T08:00:00", "2026-13-01T08:00:00Z"}) {
    JsonObject object = encode(sample());
    object.set("time", time);
    EXPECT_EQ(decodeMCPQuitRequest(object), std::nullopt) << time;
  }
}

TEST(MCPQuitRequest, TakesAnOptionalFieldOfAnotherTypeOrRangeForAbsent) {
  JsonObject object = encode(sample());
  object.set("pid", "1");
  object.set("port", 2147483648.0);
  object.set("sessionPID", true);
  object.set("note", 4);
  MCPQuitRequest expected = sample();
  expected.pid = expected.port = expected.sessionPID = std::nullopt;
  expected.note = std::nullopt;
  EXPECT_EQ(decodeMCPQuitRequest(object), expected);
}

TEST(MCPQuitRequest, KeepsStatusesAndKindsItDoesNotKnow) {
  JsonObject object = encode(sample());
  object.set("status", "postponed");
  object.set("kind", "galaxy");
  MCPQuitRequest expected = sample();
  expected.status = "postponed";
  expected.kind = "galaxy";
  EXPECT_EQ(decodeMCPQuitRequest(object), expected);
}

}  // namespace
}  // namespace brindle
