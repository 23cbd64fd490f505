#include "logic/mcp/mcp_log_entry.h"

#include <gtest/gtest.h>

#include "base/json_writer.h"

namespace brindle {
namespace {

MCPLogEntry sample() {
  return {.time = dateFromSeconds(1'772'352'000), .tool = "safety", .summary = "port 3000", .result = "askFirst"};
}

TEST(MCPLogEntry, ReadsBackAsWritten) {
  EXPECT_EQ(writeJson(encode(sample())),
            R"({"time":"2026-03-01T08:00:00Z","tool":"safety","summary":"port 3000","result":"askFirst"})");
  EXPECT_EQ(decodeMCPLogEntry(encode(sample())), sample());
}

TEST(MCPLogEntry, IsNoRecordWithoutAFieldOrWithOneOfAnotherType) {
  for (const char* key : {"time", "tool", "summary", "result"}) {
    JsonObject object = encode(sample());
    object.set(key, JsonArray{});
    EXPECT_EQ(decodeMCPLogEntry(object), std::nullopt) << key;
    ASSERT_TRUE(object.erase(key));
    EXPECT_EQ(decodeMCPLogEntry(object), std::nullopt) << key;
  }
}

}  // namespace
}  // namespace brindle
