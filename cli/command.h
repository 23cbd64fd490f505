// What a command of brindle is: a row of data that dispatch, help and completions read, and a function.
//
// To add a command:
//   1. write cli/<name>_command.cpp, which includes cli/commands.h and defines one constant, made at compile time:
//
//        int runGreeting(const Arguments& arguments, CommandContext& context) {
//          context.output.print("hello\n");
//          return ExitCode::kDone;
//        }
//        constexpr OptionSpec kOptions[] = {{.name = "--for", .value = "DURATION", .help = "how long"}};
//        constinit const Command kGreetCommand = {
//            .name = "greet", .summary = "says hello", .usage = "[--for DURATION]", .options = kOptions,
//            .run = runGreeting};
//
//   2. add the row `BRINDLE_COMMAND(kGreetCommand)` to cli/commands.inc, where help shall list it, and the file to
//      cli/CMakeLists.txt.
//
// Everything here is constant data with static lifetime; tests call `run` with a context of their own.
#pragma once

#include <span>
#include <string_view>

#include "cli/arguments.h"
#include "cli/command_context.h"

namespace brindle {

/// An option of a command, always spelt in full.
struct OptionSpec {
  /// With its two dashes: "--for".
  std::string_view name;
  /// What help calls the value: "DURATION". Empty for an option without one.
  std::string_view value = {};
  std::string_view help;
  /// "--watch" and "--watch 5" are both right. Only for an option with a value.
  bool valueOptional = false;
  /// The only values there are; empty when any text is one.
  std::span<const std::string_view> choices = {};
};

/// A word that a command takes beside its options.
struct ArgumentSpec {
  /// What help calls it: "CLIENT".
  std::string_view name;
  std::string_view help;
  bool required = true;
  /// Takes all the words that are left; only for the last one.
  bool repeated = false;
  /// The only words there are; empty when any word is one.
  std::span<const std::string_view> choices = {};
  /// Completions offer the names of all commands.
  bool namesCommand = false;
};

/// How the words after the name of a command are read.
enum class ArgumentStyle {
  /// Options and words in any order; "--" ends the options.
  options,
  /// Options first; from the first other word, or from "--", everything is left as it is.
  trailingCommand,
  /// Nothing is read, help included: for commands that other programs call and that must never complain.
  raw,
};

struct Command {
  std::string_view name;
  /// One line without full stop, for the list of commands.
  std::string_view summary;
  /// What follows the name in the usage line; several lines for several forms.
  std::string_view usage = {};
  /// Paragraphs below the usage in the command's own help; may be empty.
  std::string_view details = {};
  std::span<const OptionSpec> options = {};
  std::span<const ArgumentSpec> arguments = {};
  ArgumentStyle style = ArgumentStyle::options;
  /// Does the command; answers the exit code. Called once, with arguments that fit `options` and `arguments`.
  int (*run)(const Arguments& arguments, CommandContext& context) = nullptr;
};

}  // namespace brindle
