// How wrong usage is told: what was expected, and what came instead.
//
// Used by everything that reads the words of a command. Pure; one line without line end.
#pragma once

#include <string>
#include <string_view>

namespace brindle {

struct WrongValue {
  /// The option that has the value; empty for a word of the command.
  std::string_view subject = {};
  /// "a user id"
  std::string_view expected;
  std::string_view got;
};

/// `--uid: expected a user id, got "root"`
[[nodiscard]] std::string expectedText(const WrongValue& wrong);

/// `"root"`
[[nodiscard]] std::string inQuotes(std::string_view text);

}  // namespace brindle
