// Hook payloads of both agents: any bytes give an event or none, and an event survives being written and read back.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "base/json_reader.h"
#include "base/json_writer.h"
#include "base/text.h"
#include "logic/events/agent_event_parser.h"

namespace {

void check(const std::optional<brindle::AgentEvent>& event) {
  if (!event) return;
  if (event->message && brindle::characterCount(*event->message) > brindle::AgentEventParser::messageLimit)
    std::abort();
  const auto written = brindle::parseJson(writeJson(encode(*event, brindle::DateForm::iso8601)));
  if (!written || written->object() == nullptr) std::abort();
  if (brindle::decodeAgentEvent(*written->object(), brindle::DateForm::iso8601) != event) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  constexpr brindle::Date kTime = brindle::dateFromSeconds(1'772'352'000);
  check(brindle::AgentEventParser::parseClaudeHook(text, 1, kTime));
  check(brindle::AgentEventParser::parseCodexNotify(text, std::nullopt, kTime));
  (void)brindle::AgentEventParser::cleanMessage(text);
  return 0;
}
