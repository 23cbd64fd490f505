#include "cli/setup_claude_hooks.h"

#include <optional>

#include "base/json_reader.h"
#include "base/json_record.h"
#include "cli/setup_json_text.h"
#include "logic/mcp/shell_word.h"

namespace brindle {
namespace {

constexpr std::string_view kEvents[] = {"Notification", "Stop"};
constexpr std::string_view kHookWord = " hook";

std::string commandOf(std::string_view program) { return shellWord(program) + std::string(kHookWord); }

/// The command line that commandOf writes, for any place of our program.
bool isOurCommand(std::string_view command, std::string_view program) {
  if (command == commandOf(program)) return true;
  if (!command.ends_with(kHookWord)) return false;
  command.remove_suffix(kHookWord.size());
  if (command.ends_with('\'') || command.ends_with('"')) command.remove_suffix(1);
  return isOurProgram(command, program);
}

struct Settings {
  std::string_view text;
  std::string_view program;
};

/// Where our hook of an event is: the list of the event's groups, and the numbers of group and entry.
struct OurHook {
  const JsonPlace* list;
  std::size_t group;
  const JsonPlace* entries;
  std::size_t entry;
  const JsonPlace* command;
};

std::optional<OurHook> ourHook(const Settings& settings, const JsonPlace& list) {
  for (std::size_t group = 0; group < list.children.size(); ++group) {
    const JsonPlace* entries = list.children[group].find("hooks");
    if (entries == nullptr || entries->kind != JsonPlace::Kind::array) continue;
    for (std::size_t entry = 0; entry < entries->children.size(); ++entry) {
      const JsonPlace* command = entries->children[entry].find("command");
      if (command == nullptr || !isOurCommand(stringAt(settings.text, *command), settings.program)) continue;
      return OurHook{&list, group, entries, entry, command};
    }
  }
  return std::nullopt;
}

/// What stands in the way of reading hooks; empty when nothing does.
std::string problemOf(const std::optional<JsonPlace>& root) {
  if (!root) return "not valid JSON";
  if (root->kind != JsonPlace::Kind::object) return "expected a JSON object";
  const JsonPlace* hooks = root->find("hooks");
  if (hooks == nullptr) return {};
  if (hooks->kind != JsonPlace::Kind::object) return "\"hooks\" is not an object";
  for (const std::string_view event : kEvents) {
    const JsonPlace* list = hooks->find(event);
    if (list != nullptr && list->kind != JsonPlace::Kind::array) {
      return "\"hooks\" has a \"" + std::string(event) + "\" that is not an array";
    }
  }
  return {};
}

/// `settings.text` is known to have no problem.
std::string withHook(const Settings& settings, std::string_view event) {
  const JsonPlace root = *placesOf(settings.text);
  const JsonObject entry{{"type", "command"}, {"command", commandOf(settings.program)}};
  const JsonObject group{{"hooks", JsonArray{entry}}};
  const JsonPlace* hooks = root.find("hooks");
  if (hooks == nullptr) {
    return withMember(settings.text, root, {"hooks", JsonObject{{std::string(event), JsonArray{group}}}});
  }
  const JsonPlace* list = hooks->find(event);
  if (list == nullptr) return withMember(settings.text, *hooks, {std::string(event), JsonArray{group}});
  const auto ours = ourHook(settings, *list);
  if (!ours) return withElement(settings.text, *list, group);
  if (stringAt(settings.text, *ours->command) == commandOf(settings.program)) return std::string(settings.text);
  return withValue(settings.text, *ours->command, commandOf(settings.program));
}

std::size_t indexOf(const JsonPlace& container, const JsonPlace* child) {
  return static_cast<std::size_t>(child - container.children.data());
}

/// What there was before our hooks; what it has stays, even when it is empty.
struct Before {
  bool hooks = false;
  bool event = false;
};

Before before(std::string_view text, std::string_view event) {
  const auto document = parseJson(text);
  const JsonObject* root = document ? document->object() : nullptr;
  const JsonObject* hooks = root == nullptr ? nullptr : objectMember(*root, "hooks");
  return {hooks != nullptr, hooks != nullptr && hooks->find(event) != nullptr};
}

std::optional<std::string> withoutHook(const Settings& settings, std::string_view event, const Before& kept) {
  const JsonPlace root = *placesOf(settings.text);
  const JsonPlace* hooks = root.find("hooks");
  const JsonPlace* list = hooks == nullptr ? nullptr : hooks->find(event);
  const auto ours = list == nullptr ? std::nullopt : ourHook(settings, *list);
  if (!ours) return std::nullopt;
  if (ours->entries->children.size() > 1) return withoutChild(settings.text, *ours->entries, ours->entry);
  if (list->children.size() > 1 || kept.event) return withoutChild(settings.text, *list, ours->group);
  if (hooks->children.size() > 1 || kept.hooks) return withoutChild(settings.text, *hooks, indexOf(*hooks, list));
  return withoutChild(settings.text, root, indexOf(root, hooks));
}

}  // namespace

EditedText withClaudeHooks(std::string_view settings, std::string_view program) {
  EditedText edited{.text = std::string(settings)};
  edited.problem = problemOf(placesOf(settings));
  if (!edited.problem.empty()) return edited;
  for (const std::string_view event : kEvents) edited.text = withHook({edited.text, program}, event);
  return edited;
}

EditedText withoutClaudeHooks(const ClaudeSettings& texts, std::string_view program) {
  EditedText edited{.text = std::string(texts.settings)};
  edited.problem = problemOf(placesOf(texts.settings));
  if (!edited.problem.empty()) return edited;
  for (const std::string_view event : kEvents) {
    const Before kept = before(texts.before, event);
    while (auto text = withoutHook({edited.text, program}, event, kept)) edited.text = *std::move(text);
  }
  return edited;
}

}  // namespace brindle
