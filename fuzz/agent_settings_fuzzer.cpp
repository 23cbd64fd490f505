// The settings of agents, which people write by hand: edits may refuse them and do no harm to them. What is edited is
// still a document, doing it again changes nothing, and taking it away again leaves nothing of ours.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "base/json_reader.h"
#include "cli/setup_claude_hooks.h"
#include "cli/setup_codex_config.h"
#include "cli/setup_mcp_json.h"

using namespace brindle;

namespace {

constexpr std::string_view kProgram = "/opt/brindle";

void require(bool held) {
  if (!held) std::abort();
}

/// `add` and `remove` are one edit and its undoing.
template <typename Add, typename Remove>
void checkEdit(std::string_view text, const Add& add, const Remove& remove, bool json) {
  const EditedText added = add(text);
  require(added.problem.empty() || added.text == text);
  if (!added.problem.empty()) return;
  if (json) require(parseJson(added.text).has_value());
  const EditedText again = add(added.text);
  require(again.problem.empty() && again.text == added.text);
  const EditedText removed = remove(added.text);
  require(removed.problem.empty() || removed.text == added.text);
  if (json && removed.problem.empty()) require(parseJson(removed.text).has_value());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  checkEdit(
      text, [](std::string_view settings) { return withClaudeHooks(settings, kProgram); },
      [](std::string_view settings) {
        return withoutClaudeHooks({settings, {}}, kProgram);
      },
      true);
  checkEdit(
      text, [](std::string_view settings) { return withJsonServer(settings, kProgram); },
      [](std::string_view settings) {
        return withoutJsonServer({settings, {}}, kProgram);
      },
      true);
  for (const bool server : {false, true}) {
    const CodexParts parts{.program = kProgram, .server = server};
    checkEdit(
        text, [&](std::string_view config) { return withCodexParts(config, parts); },
        [&](std::string_view config) { return withoutCodexParts(config, parts); }, false);
  }
  return 0;
}
