#include "cli/help_text.h"

#include <algorithm>
#include <vector>

#include "cli/text_table.h"

namespace brindle {

namespace {

/// The widest line; most terminals have at least as many columns.
constexpr std::size_t kLineWidth = 80;

struct Row {
  std::string left;
  std::string_view right;
};

/// The part up to the next place where a line may end: a blank or a line end outside of brackets.
std::string_view takeWord(std::string_view& rest) {
  int depth = 0;
  std::size_t end = 0;
  for (; end < rest.size(); ++end) {
    if (rest[end] == '[') ++depth;
    if (rest[end] == ']') --depth;
    if (depth == 0 && (rest[end] == ' ' || rest[end] == '\n')) break;
  }
  const std::string_view word = rest.substr(0, end);
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return word;
}

/// `head` and the words of `text` behind it, broken where lines would be too wide and begun again below their first
/// word; with a line end.
std::string wrapped(std::string head, std::string_view text) {
  const std::size_t indent = shownWidth(head);
  std::size_t width = indent;
  bool first = true;
  while (!text.empty()) {
    const std::string_view word = takeWord(text);
    if (!first && width + 1 + shownWidth(word) > kLineWidth) {
      head += "\n" + std::string(indent, ' ');
      width = indent;
      first = true;
    }
    if (!first) head += ' ';
    head += word;
    width += shownWidth(word) + (first ? 0 : 1);
    first = false;
  }
  return head + "\n";
}

/// Two columns, the second at one place for all rows.
std::string table(const std::vector<Row>& rows) {
  std::size_t width = 0;
  for (const Row& row : rows) width = std::max(width, row.left.size());
  std::string text;
  for (const Row& row : rows) {
    text += wrapped("  " + row.left + std::string(width - row.left.size() + 2, ' '), row.right);
  }
  return text;
}

/// Paragraphs with an empty line between; those that begin with a blank stay as they are.
std::string paragraphs(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const std::size_t end = text.find("\n\n");
    const std::string_view paragraph = text.substr(0, end);
    result += "\n" + (paragraph.starts_with(' ') ? std::string(paragraph) + "\n" : wrapped("", paragraph));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 2);
  }
  return result;
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
    const std::string head = (text.empty() ? "Usage: brindle " : "       brindle ") + std::string(command.name) + " ";
    std::string form = wrapped(head, left.substr(0, end));
    if (form.ends_with(" \n")) form.erase(form.size() - 2, 1);
    text += form;
    left = end == std::string_view::npos ? std::string_view{} : left.substr(end + 1);
  } while (!left.empty());
  return text;
}

}  // namespace

std::string overallHelp(std::span<const Command* const> commands) {
  std::vector<Row> rows;
  for (const Command* command : commands) rows.push_back({std::string(command->name), command->summary});
  return wrapped("", "Brindle keeps the computer awake while coding agents work, and lets it sleep again.") +
         "\nUsage: brindle COMMAND [OPTIONS]\n\nCommands:\n" + table(rows) + "\nOptions:\n" +
         table({{"-h, --help", "shows this help, or that of a command"},
                {"--no-color", "never uses colour"},
                {"--version", "shows the version"}}) +
         "\nExit status: 0 done, 1 a negative answer, 2 wrong usage or a failure, 130 Ctrl-C\n";
}

std::string commandHelp(const Command& command) {
  std::string text = usageLines(command) + "\n" +
                     wrapped("", "brindle " + std::string(command.name) + " " + std::string(command.summary) + ".") +
                     paragraphs(command.details);
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
