#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <string>
#include <vector>

#include "base/text.h"
#include "logic/sessions/session_child_kind.h"
#include "logic/sessions/tracked_process.h"

namespace brindle {
namespace {

using Kind = SessionChildKind;

bool holdsOneOf(const std::string& haystack, const std::vector<std::string>& words) {
  for (const std::string& word : words) {
    if (haystack.find(word) != std::string::npos) return true;
  }
  return false;
}

/// The rule word for word, with the full lower-case mapping.
Kind modelKind(const TrackedProcess& process) {
  const std::string haystack = lowerCase(process.commandLine + " " + process.path.value_or("") + " " + process.name);
  if (holdsOneOf(haystack, {"mcp", "modelcontextprotocol"})) return Kind::mcp;
  if (!process.ports.empty() || process.framework) return Kind::devServer;
  if (holdsOneOf(haystack, {"vitest", "jest", "pytest", "playwright", "cargo test", "go test", "xcodebuild"})) {
    return Kind::testRunner;
  }
  if (holdsOneOf(haystack, {"chrome", "chromium", "firefox", "headless"})) return Kind::browser;
  return Kind::other;
}

/// Texts made of pieces of the words, so that whole words and near misses both occur.
rc::Gen<std::string> texts() {
  const auto piece = rc::gen::element<std::string>(
      "MC", "p", "Model", "context", "protocol", "vi", "V\u0130", "test", "jes", "t", "py", "play", "wright", "cargo",
      " ", "go", "xcode", "build", "CHROM", "e", "ium", "fire", "\u212A", "fox", "head", "less", "/", "\xff", "");
  return rc::gen::map(rc::gen::resize(8, rc::gen::container<std::vector<std::string>>(piece)),
                      [](const std::vector<std::string>& pieces) { return joined(pieces, ""); });
}

RC_GTEST_PROP(SessionChildKind, AgreesWithTheRuleOnLowerCasedText, ()) {
  TrackedProcess process{.name = *texts(), .commandLine = *texts()};
  if (*rc::gen::arbitrary<bool>()) process.path = *texts();
  if (*rc::gen::inRange(0, 4) == 0) process.ports = {3000};
  if (*rc::gen::inRange(0, 4) == 0) process.framework = "Vite";
  const Kind kind = classifyChild(process);
  RC_TAG(std::string(textOf(kind)));
  RC_ASSERT(kind == modelKind(process));
}

}  // namespace
}  // namespace brindle
