#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include "base/json_reader.h"
#include "base/json_writer.h"
#include "cli/setup_claude_hooks.h"
#include "cli/setup_codex_config.h"
#include "cli/setup_file.h"
#include "cli/setup_json_text.h"
#include "cli/setup_mcp_json.h"
#include "tests/base/store_support.h"
#include "tests/base/temporary_folder.h"

namespace brindle {
namespace {

constexpr std::string_view kProgram = "/usr/bin/brindle";

rc::Gen<std::string> anyKey() {
  return rc::gen::element<std::string>("hooks", "Stop", "Notification", "command", "mcpServers", "brindle", "a",
                                       "é\"\\/", "", "PreToolUse");
}

rc::Gen<JsonValue> anyValue(int depth) {
  const auto scalar =
      rc::gen::element<JsonValue>(JsonValue(), true, 7, -1.5, "x", "/opt/brindle hook", "mcp", "}]\",\n");
  if (depth == 0) return scalar;
  const auto inner = anyValue(depth - 1);
  const auto arrays = rc::gen::map(rc::gen::resize(3, rc::gen::container<std::vector<JsonValue>>(inner)),
                                   [](JsonArray elements) { return JsonValue(std::move(elements)); });
  const auto objects = rc::gen::map(
      rc::gen::resize(
          3, rc::gen::container<std::vector<std::pair<std::string, JsonValue>>>(rc::gen::pair(anyKey(), inner))),
      [](const std::vector<std::pair<std::string, JsonValue>>& members) {
        JsonObject object;
        for (const auto& [key, value] : members) object.set(key, value);
        return JsonValue(std::move(object));
      });
  return rc::gen::oneOf(scalar, arrays, objects);
}

std::string blanks() {
  const auto count = *rc::gen::inRange(0, 3);
  std::string text;
  for (int each = 0; each < count; ++each) text += *rc::gen::element(' ', '\n', '\t', '\r');
  return text;
}

/// The document with any white space that JSON allows.
std::string scattered(const JsonValue& value) {
  std::string text;
  if (const JsonObject* object = value.object()) {
    text = blanks();
    for (const JsonMember& member : object->members()) {
      if (text.find_first_not_of(" \n\t\r") != std::string::npos) text += ",";
      text += blanks() + writeJsonString(member.key) + blanks() + ":" + scattered(member.value);
    }
    text = "{" + text + "}";
  } else if (const JsonArray* array = value.array()) {
    for (const JsonValue& element : *array) text += (text.empty() ? "" : ",") + scattered(element);
    text = "[" + (text.empty() ? blanks() : text) + "]";
  } else {
    text = writeJson(value);
  }
  return blanks() + text + blanks();
}

/// Settings of any shape, most of them with something where our entries go.
std::string anySettings() {
  JsonValue document = *anyValue(4);
  if (*rc::gen::inRange(0, 4) > 0) {
    JsonObject settings = document.object() != nullptr ? *document.object() : JsonObject();
    JsonObject hooks;
    for (const char* event : {"Stop", "PreToolUse", "Notification"}) {
      if (*rc::gen::arbitrary<bool>())
        hooks.set(event, *rc::gen::resize(2, rc::gen::container<JsonArray>(anyValue(3))));
    }
    settings.set("hooks", hooks);
    document = settings;
  }
  return scattered(document);
}

SettingsEdit hooksIn(const std::string& path) {
  return {.path = path,
          .fresh = "{}\n",
          .add = [](std::string_view text) { return withClaudeHooks(text, kProgram); },
          .remove =
              [](const SettingsEdit::Texts& texts) {
                return withoutClaudeHooks({.settings = texts.text, .before = texts.before}, kProgram);
              }};
}

RC_GTEST_PROP(SetupProperty, PlacesCoverEveryDocument, ()) {
  const JsonValue document = *anyValue(4);
  const std::string text = scattered(document);
  const auto places = placesOf(text);
  RC_ASSERT(places.has_value());
  RC_ASSERT(parseJson(text.substr(places->begin, places->end - places->begin)) == document);
}

RC_GTEST_PROP(SetupProperty, UndoGivesAnySettingsBackByteForByte, ()) {
  const TemporaryFolder folder;
  const std::string path = folder.file("settings.json");
  const std::string original = anySettings();
  writeRaw(path, original);
  const SettingsEdit edit = hooksIn(path);
  const SettingsChange addition = plannedAddition(edit);
  RC_PRE(addition.problem.empty());
  // Settings that hold our hooks already are put right, and undo takes those away too.
  RC_PRE(edit.remove({.text = original, .before = {}}).text == original);
  RC_ASSERT(carriedOut(addition).empty());
  RC_ASSERT(contentOf(path) != original);
  RC_ASSERT(!plannedAddition(edit).changes());
  RC_ASSERT(carriedOut(plannedRemoval(edit)).empty());
  RC_ASSERT(contentOf(path) == original);
}

RC_GTEST_PROP(SetupProperty, AddingTwiceIsAddingOnce, ()) {
  const std::string original = anySettings();
  const EditedText once = withClaudeHooks(original, kProgram);
  const EditedText twice = withClaudeHooks(once.text, kProgram);
  RC_ASSERT(twice == once);
  if (once.problem.empty()) RC_ASSERT(parseJson(once.text).has_value());
}

RC_GTEST_PROP(SetupProperty, AddingHooksChangesNothingElse, ()) {
  const std::string original = anySettings();
  const EditedText edited = withClaudeHooks(original, kProgram);
  RC_PRE(edited.problem.empty());
  JsonObject before = *parseJson(original)->object();
  JsonObject after = *parseJson(edited.text)->object();
  before.erase("hooks");
  after.erase("hooks");
  RC_ASSERT(before == after);
}

RC_GTEST_PROP(SetupProperty, ServersOfOthersStayAsTheyAre, ()) {
  const std::string original = scattered(*anyValue(4));
  const EditedText added = withJsonServer(original, kProgram);
  RC_PRE(added.problem.empty() && added.declined.empty());
  RC_PRE(jsonServerState(original, kProgram) == ServerState::absent);
  RC_ASSERT(jsonServerState(added.text, kProgram) == ServerState::same);
  const EditedText removed = withoutJsonServer({.text = added.text, .before = original}, kProgram);
  RC_ASSERT(parseJson(removed.text) == parseJson(original));
}

RC_GTEST_PROP(SetupProperty, UndoGivesAnyConfigurationOfCodexBackByteForByte, ()) {
  const std::string lineEnd = *rc::gen::element<std::string>("\n", "\r\n");
  std::string original = *rc::gen::element<std::string>("", "\xEF\xBB\xBF");
  const int count = *rc::gen::inRange(0, 8);
  for (int line = 0; line < count; ++line) {
    const std::string key = "k" + std::to_string(line);
    original += *rc::gen::element<std::string>("", "# >>> mine", key + " = 1", key + " = \"x\" # c", "[" + key + "]",
                                               "[mcp_servers." + key + "]", "\t" + key + " = {}",
                                               key + " = [1," + lineEnd + " 2]");
    original += lineEnd;
  }
  if (*rc::gen::arbitrary<bool>() && original.ends_with(lineEnd)) original.resize(original.size() - lineEnd.size());
  const CodexParts parts{.program = kProgram, .server = *rc::gen::arbitrary<bool>()};
  const EditedText added = withCodexParts(original, parts);
  RC_PRE(added.problem.empty());
  RC_ASSERT(added.text != original);
  RC_ASSERT(withCodexParts(added.text, parts) == added);
  RC_ASSERT(withoutCodexParts(added.text, parts).text == original);
}

}  // namespace
}  // namespace brindle
