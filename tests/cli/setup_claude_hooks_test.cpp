#include "cli/setup_claude_hooks.h"

#include <gtest/gtest.h>

#include "base/json_reader.h"

namespace brindle {
namespace {

constexpr std::string_view kProgram = "/usr/bin/brindle";
constexpr std::string_view kOurs = R"([{"hooks":[{"type":"command","command":"/usr/bin/brindle hook"}]}])";

std::string added(std::string_view settings) {
  const EditedText edited = withClaudeHooks(settings, kProgram);
  EXPECT_EQ(edited.problem, "");
  EXPECT_TRUE(edited.declined.empty());
  return edited.text;
}

std::string removed(std::string_view settings, std::string_view before = {}) {
  const EditedText edited = withoutClaudeHooks({.settings = settings, .before = before}, kProgram);
  EXPECT_EQ(edited.problem, "");
  return edited.text;
}

TEST(SetupClaudeHooks, AddsOneHookForEachEventToSettingsWithoutAny) {
  EXPECT_EQ(added(R"({"model":"opus"})"), R"({"model":"opus","hooks":{"Notification":)" + std::string(kOurs) +
                                              R"(,"Stop":)" + std::string(kOurs) + "}}");
}

TEST(SetupClaudeHooks, WritesSettingsThatAreEmptyOnLinesOfTheirOwn) {
  EXPECT_EQ(added("{}\n").substr(0, 45), "{\n  \"hooks\": {\n    \"Notification\": [\n      {\n");
}

TEST(SetupClaudeHooks, AddsItsHookBehindThoseOfOthers) {
  const std::string theirs =
      R"({"hooks":{"Stop":[{"matcher":"x","hooks":[{"type":"command","command":"say hi"}]}],"PreToolUse":[]}})";
  const auto document = parseJson(added(theirs));
  const JsonObject& hooks = *document->object()->find("hooks")->object();
  ASSERT_EQ(hooks.size(), 3u);
  EXPECT_EQ(hooks.find("Stop")->array()->size(), 2u);
  EXPECT_EQ((*hooks.find("Stop")->array())[0],
            *parseJson(R"({"matcher":"x","hooks":[{"type":"command","command":"say hi"}]})"));
  EXPECT_EQ(*hooks.find("PreToolUse"), JsonValue(JsonArray{}));
}

TEST(SetupClaudeHooks, ChangesNothingTheSecondTime) {
  for (const char* settings : {"{}", "{\n  \"a\": 1\n}\n", R"({"hooks":{}})", R"({"hooks":{"Stop":[]}})"}) {
    const std::string once = added(settings);
    EXPECT_NE(once, settings);
    EXPECT_EQ(added(once), once);
  }
}

TEST(SetupClaudeHooks, PutsTheHookOfAProgramThatHasMovedRight) {
  const std::string text = added("{}");
  for (const std::string_view elsewhere : {"/opt/old/brindle", "brindle", "/home/a b/brindle", "/o'neil/brindle"}) {
    const EditedText old = withClaudeHooks("{}", elsewhere);
    EXPECT_EQ(added(old.text), text) << elsewhere;
  }
}

TEST(SetupClaudeHooks, QuotesAPathWithABlank) {
  const EditedText edited = withClaudeHooks("{\"a\":1}", "/a b/brindle");
  EXPECT_NE(edited.text.find(R"("command":"'/a b/brindle' hook")"), std::string::npos) << edited.text;
}

TEST(SetupClaudeHooks, TakesOnlyItsOwnAway) {
  const std::string settings =
      R"({"hooks":{"Stop":[{"hooks":[{"type":"command","command":"say hi"},{"type":"command","command":"/old/brindle hook"}]}],)"
      R"("Notification":[{"hooks":[{"type":"command","command":"/usr/bin/brindle hook"}]}],)"
      R"("PreToolUse":[{"hooks":[{"type":"command","command":"brindle-other hook"}]}]}})";
  EXPECT_EQ(removed(settings), R"({"hooks":{"Stop":[{"hooks":[{"type":"command","command":"say hi"}]}],)"
                               R"("PreToolUse":[{"hooks":[{"type":"command","command":"brindle-other hook"}]}]}})");
}

TEST(SetupClaudeHooks, TakesContainersThatAreLeftEmptyAwayUnlessTheyWereThere) {
  EXPECT_EQ(removed(added(R"({"a":1})")), R"({"a":1})");
  EXPECT_EQ(removed(added(R"({"hooks":{}})")), R"({})");
  EXPECT_EQ(removed(added(R"({"hooks":{}})"), R"({"hooks":{}})"), R"({"hooks":{}})");
  EXPECT_EQ(removed(added(R"({"hooks":{"Stop":[]}})"), R"({"hooks":{"Stop":[]}})"), R"({"hooks":{"Stop":[]}})");
}

TEST(SetupClaudeHooks, LeavesSettingsWithoutItsHooksAsTheyAre) {
  for (const char* settings : {"{ }", R"({"hooks":{"Stop":[1,{"hooks":3},{"hooks":[{"command":5}]}]}})"}) {
    EXPECT_EQ(removed(settings), settings);
  }
}

TEST(SetupClaudeHooks, RefusesWhatItCannotRead) {
  const std::pair<const char*, const char*> cases[] = {
      {"", "not valid JSON"},
      {"{", "not valid JSON"},
      {"{} // mine", "not valid JSON"},
      {"[]", "expected a JSON object"},
      {R"({"hooks":[]})", "\"hooks\" is not an object"},
      {R"({"hooks":{"Stop":{}}})", "\"hooks\" has a \"Stop\" that is not an array"},
      {R"({"hooks":{"Notification":null}})", "\"hooks\" has a \"Notification\" that is not an array"},
  };
  for (const auto& [settings, problem] : cases) {
    EXPECT_EQ(withClaudeHooks(settings, kProgram), (EditedText{.text = settings, .problem = problem}));
    EXPECT_EQ(withoutClaudeHooks({.settings = settings, .before = {}}, kProgram),
              (EditedText{.text = settings, .problem = problem}));
  }
}

}  // namespace
}  // namespace brindle
