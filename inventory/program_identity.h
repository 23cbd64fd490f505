// The names under which a program can be known: its file, what it was called, and the script it runs.
//
// Used by every recogniser. Names lie: npm installs are called x.exe, a program may replace its whole command line by
// a title, a script may carry its interpreter's name or its own. So all names are kept side by side and tables match
// them as whole base names, never as substrings of the command line.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "inventory/process_facts.h"

namespace brindle {

/// Views into the ProcessFacts it was made from, which must outlive it. Base names are without directories,
/// without ".exe", and without the "-" of login shells. A name that is not known is empty.
struct ProgramIdentity {
  /// Base name of the executable file.
  std::string_view executable;
  /// Whole path of the executable file.
  std::string_view path;
  /// Base name of the first argument.
  std::string_view invoked;
  /// The file or module that an interpreter runs, as given; empty for other programs and for code on the line.
  std::string_view scriptPath;
  /// Base name of scriptPath, without ".js", ".mjs", ".cjs", ".py".
  std::string_view script;
  /// The kernel's name.
  std::string_view kernelName;
  /// What follows the program, or the script where there is one.
  std::vector<std::string_view> arguments;

  /// Whether executable, invoked or script is `name`; the kernel's name counts only where nothing else is known.
  [[nodiscard]] bool isCalled(std::string_view name) const;
  [[nodiscard]] bool isCalledAnyOf(std::span<const std::string_view> names) const;
  /// Whether one of the arguments is exactly `argument`.
  [[nodiscard]] bool hasArgument(std::string_view argument) const;
  /// The first argument that is no option; empty when there is none.
  [[nodiscard]] std::string_view subcommand() const;
};

/// Never fails: facts without path and arguments give the kernel's name alone.
[[nodiscard]] ProgramIdentity identityOf(const ProcessFacts& facts);

/// The part after the last "/"; "" for "a/".
[[nodiscard]] std::string_view baseName(std::string_view path);

/// Whether the last components of `path` are those of `pattern`, where "*" stands for any one component:
/// "/home/u/.local/share/claude/versions/2.1.0" matches "claude/versions/*".
[[nodiscard]] bool pathEndsWith(std::string_view path, std::string_view pattern);

}  // namespace brindle
