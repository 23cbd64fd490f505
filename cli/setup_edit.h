// What a change to the text of an agent's settings comes to.
//
// Answered by every function that adds something of ours to settings or takes it away. Plain values.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace brindle {

struct EditedText {
  /// The whole new text; the old one when there is nothing to change.
  std::string text;
  /// What was left alone because it belongs to somebody else, one line each. The rest has been done.
  std::vector<std::string> declined = {};
  /// Why nothing can be done, one line; `text` is then the old one. Empty otherwise.
  std::string problem = {};

  bool operator==(const EditedText&) const = default;
};

/// A command line or path in settings is ours when it is `program` itself, or any program called "brindle": it may have
/// been installed elsewhere before.
[[nodiscard]] bool isOurProgram(std::string_view path, std::string_view program);

/// Whose server is registered under our name.
enum class ServerState { absent, same, stale, foreign };

}  // namespace brindle
