#include "cli/help_text.h"

#include <algorithm>
#include <vector>

namespace brindle {

namespace {

struct Row {
  std::string left;
  std::string_view right;
};

/// Two columns, the second at one place for all rows.
std::string table(const std::vector<Row>& rows) {
  std::size_t width = 0;
  for (const Row& row : rows) width = std::max(width, row.left.size());
  std::string text;
  for (const Row& row : rows) {
    text += "  " + row.left + std::string(width - row.left.size() + 2, ' ');
    text += row.right;
    text += '\n';
  }
  return text;
}

std::string joinedChoices(std::span<const std::string_view> choices) {
  std::string text;
  for (const std::string_view choice : choices) {
    if (!text.empty()) text += '|';
    text += choice;
  }
  return text;
}

std::string leftOf(const OptionSpec& option) {
  std::string text(option.name);
  if (option.value.empty()) return text;
  std::string value(option.value);
  if (!option.choices.empty()) value = joinedChoices(option.choices);
  return text + (option.valueOptional ? " [" + value + "]" : " " + value);
}

std::string usageLines(const Command& command) {
  std::string text;
  std::string_view left = command.usage;
  do {
    const std::size_t end = left.find('\n');
    const std::string_view form = left.substr(0, end);
    text += text.empty() ? "Usage: brindle " : "       brindle ";
    text += command.name;
    if (!form.empty()) text += ' ';
    text += form;
    text += '\n';
    left = end == std::string_view::npos ? std::string_view{} : left.substr(end + 1);
  } while (!left.empty());
  return text;
}

}  // namespace

std::string overallHelp(std::span<const Command* const> commands) {
  std::vector<Row> rows;
  for (const Command* command : commands) rows.push_back({std::string(command->name), command->summary});
  return "Brindle keeps the computer awake while coding agents work, and lets it sleep again.\n\n"
         "Usage: brindle COMMAND [OPTIONS]\n\nCommands:\n" +
         table(rows) + "\nOptions:\n" +
         table({{"-h, --help", "shows this help, or that of a command"},
                {"--no-color", "never uses colour"},
                {"--version", "shows the version"}}) +
         "\nExit status: 0 done, 1 a negative answer, 2 wrong usage or a failure, 130 interrupted.\n";
}

std::string commandHelp(const Command& command) {
  std::string text =
      usageLines(command) + "\nbrindle " + std::string(command.name) + " " + std::string(command.summary) + ".\n";
  if (!command.details.empty()) text += "\n" + std::string(command.details) + "\n";
  std::vector<Row> rows;
  for (const ArgumentSpec& argument : command.arguments) rows.push_back({std::string(argument.name), argument.help});
  if (!rows.empty()) text += "\nArguments:\n" + table(rows);
  rows.clear();
  for (const OptionSpec& option : command.options) rows.push_back({leftOf(option), option.help});
  rows.push_back({"-h, --help", "shows this help"});
  return text + "\nOptions:\n" + table(rows);
}

std::string versionText() { return "brindle " BRINDLE_VERSION; }

}  // namespace brindle
