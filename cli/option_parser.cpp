#include "cli/option_parser.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <deque>

#include "cli/usage_text.h"

namespace brindle {

namespace {

constexpr OptionSpec kNoColor = {.name = "--no-color", .help = "never uses colour"};

const OptionSpec* specOf(const Command& command, std::string_view name) {
  const auto found = std::ranges::find(command.options, name, &OptionSpec::name);
  return found == command.options.end() ? nullptr : &*found;
}

std::string listed(std::span<const std::string_view> choices) {
  std::string text;
  for (std::size_t index = 0; index < choices.size(); ++index) {
    if (index > 0) text += index + 1 == choices.size() ? " or " : ", ";
    text += choices[index];
  }
  return text;
}

bool isChoice(std::span<const std::string_view> choices, std::string_view text) {
  return choices.empty() || std::ranges::find(choices, text) != choices.end();
}

/// How many of `words` belong to the command itself, before the command that it is to run.
std::size_t ownWords(const Command& command, const std::vector<std::string>& words) {
  for (std::size_t index = 0; index < words.size(); ++index) {
    const std::string& word = words[index];
    if (word == "--" || word.size() < 2 || word[0] != '-') return index;
    const OptionSpec* spec = specOf(command, word);
    // The value of an option is the next word, whatever it is.
    if (spec != nullptr && !spec->value.empty() && !spec->valueOptional) ++index;
  }
  return words.size();
}

std::optional<UsageProblem> problemWithWords(const Command& command, const std::vector<std::string>& words) {
  std::size_t used = 0;
  for (const ArgumentSpec& argument : command.arguments) {
    if (used == words.size()) {
      if (!argument.required) break;
      return UsageProblem{"expected " +
                          (argument.choices.empty() ? std::string(argument.name) : listed(argument.choices))};
    }
    const std::size_t end = argument.repeated ? words.size() : used + 1;
    for (; used < end; ++used) {
      if (!isChoice(argument.choices, words[used])) {
        return UsageProblem{expectedText({.expected = listed(argument.choices), .got = words[used]})};
      }
    }
  }
  if (used < words.size()) return UsageProblem{"unexpected argument " + inQuotes(words[used])};
  return std::nullopt;
}

/// One parse of one command's own words with the option library.
class Parse {
 public:
  explicit Parse(const Command& command) : command_(command) {
    app_.set_help_flag("");
    // Words and unknown options both stay over and are told apart here: as an option of its own, a list of words
    // would have "[a,b]" taken apart.
    app_.allow_extras();
    help_ = app_.add_flag("-h,--help")->disable_flag_override();
    add(kNoColor);
    for (const OptionSpec& spec : command.options) add(spec);
  }

  ParsedArguments operator()(const std::vector<std::string>& own) {
    if (!own.empty()) {
      // The library would complain in words that differ between its versions.
      const OptionSpec* last = specOf(command_, own.back());
      if (last != nullptr && !last->value.empty() && !last->valueOptional) return missingValue(*last);
    }
    std::vector<std::string> backwards(own.rbegin(), own.rend());  // the library takes them from the back
    try {
      app_.parse(backwards);
    } catch (const CLI::ArgumentMismatch&) {
      return UsageProblem{flagWithValue(own) + " takes no value"};
    } catch (const CLI::Error& error) {
      return UsageProblem{error.what()};
    }
    Arguments arguments;
    for (std::string& word : app_.remaining()) {
      if (word.size() > 1 && word[0] == '-') return UsageProblem{"unknown option " + word};
      arguments.words.push_back(std::move(word));
    }
    if (help_->count() > 0) return HelpAsked{};
    return collected(std::move(arguments));
  }

 private:
  struct Known {
    const OptionSpec* spec;
    CLI::Option* option;
    std::string* value;
  };

  void add(const OptionSpec& spec) {
    std::string& value = values_.emplace_back();
    if (spec.value.empty()) {
      known_.push_back({&spec, app_.add_flag(std::string(spec.name))->disable_flag_override(), &value});
      return;
    }
    CLI::Option* option = app_.add_option(std::string(spec.name), value);
    option->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    if (spec.valueOptional) option->expected(0, 1);
    known_.push_back({&spec, option, &value});
  }

  ParsedArguments collected(Arguments arguments) {
    for (const auto& [spec, option, value] : known_) {
      if (option->count() == 0) continue;
      if (value->empty() && !spec->value.empty() && !spec->valueOptional) return missingValue(*spec);
      if (!value->empty() && !isChoice(spec->choices, *value)) {
        return UsageProblem{expectedText({.subject = spec->name, .expected = listed(spec->choices), .got = *value})};
      }
      arguments.options.emplace(spec->name, *value);
    }
    return arguments;
  }

  static UsageProblem missingValue(const OptionSpec& spec) {
    const std::string value = spec.choices.empty() ? std::string(spec.value) : listed(spec.choices);
    return UsageProblem{std::string(spec.name) + ": expected " + value};
  }

  /// The first option without value that was given one; the library's own text differs between its versions.
  [[nodiscard]] std::string flagWithValue(const std::vector<std::string>& own) const {
    for (const std::string& word : own) {
      const std::string name = word.substr(0, word.find('='));
      const auto isFlag = [&](const Known& known) { return known.spec->name == name && known.spec->value.empty(); };
      if (name.size() < word.size() && std::ranges::any_of(known_, isFlag)) return name;
    }
    return "--help";
  }

  const Command& command_;
  CLI::App app_;
  CLI::Option* help_ = nullptr;
  std::vector<Known> known_;
  std::deque<std::string> values_;  // a deque: the library keeps their addresses
};

}  // namespace

ParsedArguments parseArguments(const Command& command, const std::vector<std::string>& words) {
  if (command.style == ArgumentStyle::raw) return Arguments{.trailing = words};
  const bool trails = command.style == ArgumentStyle::trailingCommand;
  const auto split =
      trails ? words.begin() + static_cast<std::ptrdiff_t>(ownWords(command, words)) : std::ranges::find(words, "--");
  auto rest = split;
  if (rest != words.end() && *rest == "--") ++rest;
  ParsedArguments parsed = Parse(command)({words.begin(), split});
  if (auto* arguments = std::get_if<Arguments>(&parsed)) {
    auto& target = trails ? arguments->trailing : arguments->words;
    target.insert(target.end(), rest, words.end());
    if (auto problem = problemWithWords(command, arguments->words)) return *std::move(problem);
  }
  return parsed;
}

}  // namespace brindle
