// Whether the person has agreed to a stop. Nothing is stopped unless the decision is to proceed.
//
// Asked by every command that stops something. Pure: the host asks the question and hands the answer in.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace brindle {

struct StopConfirm {
  enum class Decision { proceed, declined, needsTTY };

  /// Agreement was given on the command line.
  bool agreedInAdvance = false;
  /// The command runs at an interactive terminal.
  bool interactive = false;

  /// Proceeds when agreed in advance; needs a terminal when there is none; else asks once. "y" and "yes" in any letter
  /// case are agreement, everything else and no answer at all decline. `ask` shows the question and returns the line
  /// that was typed, without its line end, or none at the end of input.
  [[nodiscard]] Decision decide(const std::function<std::optional<std::string>()>& ask) const;
};

}  // namespace brindle
