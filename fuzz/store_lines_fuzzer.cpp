// Any bytes in the shared files give records or none, and the records that they give survive being written and read.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "logic/events/agent_event_inbox.h"
#include "logic/mcp/mcp_heartbeat.h"
#include "logic/mcp/mcp_request_log.h"
#include "logic/widget/widget_feed.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace brindle;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);

  const auto events = readAgentEventLines(bytes);
  std::string eventLines;
  for (const AgentEvent& event : events) eventLines += agentEventLine(event);
  if (readAgentEventLines(eventLines) != events) std::abort();

  const auto entries = readMCPLogLines(bytes);
  std::string entryLines;
  for (const MCPLogEntry& entry : entries) entryLines += mcpLogLine(entry);
  if (readMCPLogLines(entryLines) != entries) std::abort();

  if (const auto stamp = MCPHeartbeat::decodeStamp(bytes)) {
    if (MCPHeartbeat::decodeStamp(MCPHeartbeat::encodeStamp(*stamp)) != stamp) std::abort();
  }
  if (const auto snapshot = WidgetFeed::decodeText(bytes)) {
    if (WidgetFeed::decodeText(WidgetFeed::encodeText(*snapshot)) != snapshot) std::abort();
  }
  return 0;
}
