// The words after a command's name, sorted into options, plain words and a trailing command.
//
// Made by parseArguments, which has checked them against the command's row; read by the command. Tests may build
// one by hand.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brindle {

struct Arguments {
  /// Each option that was given, with its value; empty for an option without one. The last one given wins.
  std::map<std::string, std::string, std::less<>> options;
  /// The plain words, in their order.
  std::vector<std::string> words;
  /// The command after the options, word for word; for a raw command, everything after its name.
  std::vector<std::string> trailing;

  [[nodiscard]] bool has(std::string_view option) const { return options.contains(option); }
  /// The value of the option; none when it was not given, and when it was given without a value.
  [[nodiscard]] std::optional<std::string> value(std::string_view option) const {
    const auto found = options.find(option);
    if (found == options.end() || found->second.empty()) return std::nullopt;
    return found->second;
  }

  bool operator==(const Arguments&) const = default;
};

}  // namespace brindle
