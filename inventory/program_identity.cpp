#include "inventory/program_identity.h"

#include <algorithm>
#include <array>
#include <optional>

namespace brindle {
namespace {

using std::string_view;

/// Arguments of one process that are looked at; a command line may hold a hundred thousand file names.
constexpr std::size_t kArgumentLimit = 64;

constexpr auto kInterpreters = std::to_array<string_view>(
    {"node", "nodejs", "bun", "deno", "python", "php", "ruby", "perl", "bash", "sh", "zsh", "dash", "java"});

/// Options of interpreters that are followed by a value in an argument of its own.
constexpr auto kValueOptions =
    std::to_array<string_view>({"-r", "--require", "--import", "--loader", "--experimental-loader", "-W", "-X", "-cp",
                                "-classpath", "--conditions"});

constexpr auto kScriptEndings = std::to_array<string_view>({".js", ".mjs", ".cjs", ".py"});

string_view withoutEnding(string_view text, string_view ending) {
  return text.size() > ending.size() && text.ends_with(ending) ? text.substr(0, text.size() - ending.size()) : text;
}

string_view programName(string_view path) {
  string_view name = baseName(path);
  if (name.size() > 1 && name.front() == '-') name.remove_prefix(1);
  return withoutEnding(name, ".exe");
}

bool isInterpreter(string_view name) {
  // python3.11, php8.2: the version is part of the file's name.
  const string_view stem = name.substr(0, name.find_last_not_of("0123456789.") + 1);
  return std::ranges::find(kInterpreters, stem) != kInterpreters.end();
}

/// The arguments as the program got them, or the words of a title that replaced them.
std::vector<string_view> tokensOf(const ProcessFacts& facts) {
  std::vector<string_view> tokens;
  if (facts.arguments.size() == 1 && !facts.arguments.front().starts_with('/')) {
    string_view rest = facts.arguments.front();
    while (!rest.empty() && tokens.size() < kArgumentLimit) {
      const std::size_t end = std::min(rest.find(' '), rest.size());
      if (end > 0) tokens.push_back(rest.substr(0, end));
      rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return tokens;
  }
  for (const std::string& argument : facts.arguments) {
    if (tokens.size() == kArgumentLimit) break;
    tokens.push_back(argument);
  }
  return tokens;
}

/// The place of the script among the tokens, or none for code on the command line and for interactive use.
std::optional<std::size_t> scriptPlace(const std::vector<string_view>& tokens) {
  for (std::size_t place = 1; place < tokens.size(); ++place) {
    const string_view token = tokens[place];
    if (token == "-m" || token == "-jar") return place + 1 < tokens.size() ? std::optional(place + 1) : std::nullopt;
    if (token == "-c" || token == "-e" || token == "-p" || token == "-S" || token == "--eval") return std::nullopt;
    if (std::ranges::find(kValueOptions, token) != kValueOptions.end()) {
      ++place;
      continue;
    }
    if (!token.starts_with('-')) return place;
  }
  return std::nullopt;
}

}  // namespace

string_view baseName(string_view path) {
  const std::size_t slash = path.rfind('/');
  return slash == string_view::npos ? path : path.substr(slash + 1);
}

bool pathEndsWith(string_view path, string_view pattern) {
  while (!pattern.empty()) {
    const string_view wanted = baseName(pattern);
    const string_view component = baseName(path);
    if (component.empty() || (wanted != "*" && wanted != component)) return false;
    if (wanted.size() == pattern.size()) return true;
    pattern.remove_suffix(wanted.size() + 1);
    if (component.size() == path.size()) return false;
    path.remove_suffix(component.size() + 1);
  }
  return false;
}

ProgramIdentity identityOf(const ProcessFacts& facts) {
  ProgramIdentity identity;
  identity.kernelName = facts.name;
  if (facts.path) {
    identity.path = *facts.path;
    identity.executable = programName(identity.path);
  }
  const std::vector<string_view> tokens = tokensOf(facts);
  if (tokens.empty()) return identity;
  identity.invoked = programName(tokens.front());
  std::size_t next = 1;
  // A title replaces the interpreter's own arguments, and then its words are no script.
  const bool ownArguments = facts.arguments.size() > 1;
  if (isInterpreter(identity.invoked) || (ownArguments && isInterpreter(identity.executable))) {
    if (const auto place = scriptPlace(tokens)) {
      identity.scriptPath = tokens[*place];
      identity.script = baseName(identity.scriptPath);
      for (const string_view ending : kScriptEndings) identity.script = withoutEnding(identity.script, ending);
      next = *place + 1;
    }
  }
  identity.arguments.assign(tokens.begin() + static_cast<std::ptrdiff_t>(next), tokens.end());
  return identity;
}

bool ProgramIdentity::isCalled(string_view name) const {
  if (executable == name || invoked == name || script == name) return true;
  return executable.empty() && invoked.empty() && kernelName == name;
}

bool ProgramIdentity::isCalledAnyOf(std::span<const string_view> names) const {
  return std::ranges::any_of(names, [this](string_view name) { return isCalled(name); });
}

bool ProgramIdentity::hasArgument(string_view argument) const {
  return std::ranges::find(arguments, argument) != arguments.end();
}

string_view ProgramIdentity::subcommand() const {
  const auto found = std::ranges::find_if(arguments, [](string_view each) { return !each.starts_with('-'); });
  return found == arguments.end() ? string_view{} : *found;
}

}  // namespace brindle
