// What a command of brindle may touch of the process it runs in.
//
// Made once by main; handed to the command for as long as it runs. Tests make their own, with outputs that record
// and an environment of two variables.
#pragma once

#include <string_view>

#include "cli/output.h"
#include "platform/environment.h"
#include "platform/foreground_child.h"

namespace brindle {

/// Which of the standard streams are terminals. A command asks questions only when `input` and `error` are.
struct TerminalStreams {
  bool input = false;
  bool output = false;
  bool error = false;

  bool operator==(const TerminalStreams&) const = default;
};

struct CommandContext {
  Output& output;
  Environment environment;
  TerminalStreams terminals;
  /// As the process was started, for the programs it starts.
  InheritedSignals signals = {};
  /// The command that runs, with which wrong usage is told; empty before one is found.
  std::string_view command = {};
};

}  // namespace brindle
