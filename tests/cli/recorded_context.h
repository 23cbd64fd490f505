// A command's context that records what the command prints; used by the tests of commands.
#pragma once

#include <map>
#include <string>

#include "cli/command_context.h"

namespace brindle {

/// Remembers everything; fails with `code` from the moment it is set.
class RecordingSink : public TextSink {
 public:
  Outcome write(std::string_view piece) override {
    ++writes;
    if (code != 0) return fail(code, "write standard output");
    text += piece;
    return {};
  }

  [[nodiscard]] std::size_t columns() const override { return width; }

  std::string text;
  int code = 0;
  std::size_t width = 0;
  int writes = 0;
};

struct RecordedContext {
  RecordingSink results;
  RecordingSink remarks;
  std::map<std::string, std::string> variables;
  Output output{{.results = results, .remarks = remarks}, false};
  CommandContext context{.output = output,
                         .environment = [this](const std::string& name) -> std::optional<std::string> {
                           const auto found = variables.find(name);
                           if (found == variables.end()) return std::nullopt;
                           return found->second;
                         }};
};

}  // namespace brindle
