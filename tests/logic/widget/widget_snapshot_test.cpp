#include "logic/widget/widget_snapshot.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <limits>

#include "base/json_reader.h"
#include "base/json_writer.h"

namespace brindle {
namespace {

WidgetSnapshot sample() {
  return {.takenAt = dateFromSeconds(1'772'352'000.125),
          .ghosts = 2,
          .ghostBytes = std::numeric_limits<std::uint64_t>::max(),
          .ghostPorts = {3000, 65535},
          .agents = 1,
          .agentNames = {"Codex"},
          .working = 1,
          .memoryUsed = 8,
          .memoryTotal = 16,
          .plan = WidgetSnapshot::Plan{.account = "Max",
                                       .used = 0.25,
                                       .resets = dateFromSeconds(1'772'360'000.5),
                                       .emptyAt = dateFromSeconds(1'772'355'000),
                                       .onPace = true},
          .freedThisWeek = 5,
          .freedProcesses = 6};
}

std::optional<WidgetSnapshot> readBack(const WidgetSnapshot& snapshot) {
  const auto document = parseJson(writeJson(encode(snapshot), {.sortedKeys = true}));
  if (!document || document->object() == nullptr) return std::nullopt;
  return decodeWidgetSnapshot(*document->object());
}

TEST(WidgetSnapshot, ReadsBackAsWrittenWithFractionsOfSeconds) { EXPECT_EQ(readBack(sample()), sample()); }

TEST(WidgetSnapshot, WritesItsFieldsInOrderWithDatesAsNumbers) {
  WidgetSnapshot snapshot = sample();
  snapshot.ghostBytes = 7;
  EXPECT_EQ(writeJson(encode(snapshot)),
            R"({"takenAt":1772352000.125,"ghosts":2,"ghostBytes":7,"ghostPorts":[3000,65535],"agents":1,)"
            R"("agentNames":["Codex"],"working":1,"memoryUsed":8,"memoryTotal":16,"plan":{"account":"Max",)"
            R"("used":0.25,"resets":1772360000.5,"emptyAt":1772355000,"onPace":true},"freedThisWeek":5,)"
            R"("freedProcesses":6})");
}

TEST(WidgetSnapshot, LeavesAbsentFieldsOut) {
  WidgetSnapshot snapshot = sample();
  snapshot.plan->resets = snapshot.plan->emptyAt = std::nullopt;
  EXPECT_EQ(encode(snapshot).find("plan")->object()->size(), 3U);
  EXPECT_EQ(readBack(snapshot), snapshot);
  snapshot.plan = std::nullopt;
  EXPECT_EQ(encode(snapshot).find("plan"), nullptr);
  EXPECT_EQ(readBack(snapshot), snapshot);
}

TEST(WidgetSnapshot, IsNoRecordWithoutARequiredFieldOrWithOneOfAnotherType) {
  for (const char* key : {"takenAt", "ghosts", "ghostBytes", "ghostPorts", "agents", "agentNames", "working",
                          "memoryUsed", "memoryTotal", "freedThisWeek", "freedProcesses"}) {
    for (const JsonValue& wrong : {JsonValue(nullptr), JsonValue("1"), JsonValue(JsonArray{nullptr})}) {
      JsonObject object = encode(sample());
      object.set(key, wrong);
      EXPECT_EQ(decodeWidgetSnapshot(object), std::nullopt) << key;
    }
    JsonObject object = encode(sample());
    ASSERT_TRUE(object.erase(key)) << key;
    EXPECT_EQ(decodeWidgetSnapshot(object), std::nullopt) << key;
  }
}

TEST(WidgetSnapshot, IsNoRecordWithAPlanThatIsNone) {
  for (const char* key : {"account", "used", "onPace"}) {
    JsonObject object = encode(sample());
    JsonObject plan = *object.find("plan")->object();
    ASSERT_TRUE(plan.erase(key)) << key;
    object.set("plan", plan);
    EXPECT_EQ(decodeWidgetSnapshot(object), std::nullopt) << key;
  }
}

TEST(WidgetSnapshot, TakesOptionalFieldsOfAnotherTypeForAbsent) {
  JsonObject object = encode(sample());
  JsonObject plan = *object.find("plan")->object();
  plan.set("resets", "soon");
  plan.set("emptyAt", nullptr);
  object.set("plan", plan);
  WidgetSnapshot expected = sample();
  expected.plan->resets = expected.plan->emptyAt = std::nullopt;
  EXPECT_EQ(decodeWidgetSnapshot(object), expected);
  object.set("plan", "none");
  expected.plan = std::nullopt;
  EXPECT_EQ(decodeWidgetSnapshot(object), expected);
}

TEST(WidgetSnapshot, RefusesPortsJustOutOfRange) {
  for (const int port : {-1, 65536}) {
    JsonObject object = encode(sample());
    object.set("ghostPorts", JsonArray{port});
    EXPECT_EQ(decodeWidgetSnapshot(object), std::nullopt) << port;
  }
  for (const int port : {0, 65535}) {
    JsonObject object = encode(sample());
    object.set("ghostPorts", JsonArray{port});
    EXPECT_NE(decodeWidgetSnapshot(object), std::nullopt) << port;
  }
}

TEST(WidgetSnapshot, WritesNoNumberThatIsNotFinite) {
  WidgetSnapshot snapshot = sample();
  snapshot.takenAt = dateFromSeconds(std::numeric_limits<double>::quiet_NaN());
  EXPECT_EQ(encode(snapshot).find("takenAt"), nullptr);
  snapshot = sample();
  snapshot.plan->used = std::numeric_limits<double>::infinity();
  snapshot.plan->resets = dateFromSeconds(std::numeric_limits<double>::infinity());
  EXPECT_EQ(encode(snapshot).find("plan")->object()->find("used"), nullptr);
  EXPECT_EQ(encode(snapshot).find("plan")->object()->find("resets"), nullptr);
}

RC_GTEST_PROP(WidgetSnapshot, AnySnapshotReadsBackAsWritten, ()) {
  WidgetSnapshot snapshot = sample();
  snapshot.takenAt = dateFromSeconds(*rc::gen::arbitrary<double>());
  snapshot.ghosts = *rc::gen::arbitrary<std::int64_t>();
  snapshot.ghostBytes = *rc::gen::arbitrary<std::uint64_t>();
  snapshot.ghostPorts = *rc::gen::arbitrary<std::vector<std::uint16_t>>();
  snapshot.plan->used = *rc::gen::arbitrary<double>();
  snapshot.plan->resets = dateFromSeconds(*rc::gen::arbitrary<double>());
  snapshot.agentNames =
      *rc::gen::container<std::vector<std::string>>(rc::gen::element<std::string>("a/b", "\"", "é", ""));
  RC_ASSERT(readBack(snapshot) == snapshot);
}

}  // namespace
}  // namespace brindle
