// Any line gives a quit request, a log entry, a widget snapshot or none of them, and each survives being written and
// read again.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "base/iso8601.h"
#include "base/json_reader.h"
#include "base/json_writer.h"
#include "logic/mcp/mcp_log_entry.h"
#include "logic/mcp/mcp_quit_request.h"
#include "logic/widget/widget_copy.h"
#include "logic/widget/widget_snapshot.h"

namespace {

using namespace brindle;

/// Times whose year in UTC no longer has four digits are not read back.
bool hasText(Date time) { return readIso8601(writeIso8601(time)) == time; }

void requireSame(bool same) {
  if (!same) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto document = parseJson({reinterpret_cast<const char*>(data), size});
  if (!document || document->object() == nullptr) return 0;
  const JsonObject& object = *document->object();
  if (const auto request = decodeMCPQuitRequest(object); request && hasText(request->time)) {
    const auto again = parseJson(writeJson(encode(*request), {.pretty = true, .sortedKeys = true}));
    requireSame(decodeMCPQuitRequest(*again->object()) == request);
  }
  if (const auto entry = decodeMCPLogEntry(object); entry && hasText(entry->time)) {
    requireSame(decodeMCPLogEntry(*parseJson(writeJson(encode(*entry)))->object()) == entry);
  }
  if (const auto snapshot = decodeWidgetSnapshot(object)) {
    requireSame(decodeWidgetSnapshot(*parseJson(writeJson(encode(*snapshot)))->object()) == snapshot);
    const Date now = snapshot->takenAt;
    requireSame(!(WidgetCopy::ghostLine(*snapshot) + WidgetCopy::agentsLine(*snapshot) +
                  WidgetCopy::planLine(*snapshot, now).value_or("") + WidgetCopy::freedLine(*snapshot))
                     .empty());
  }
  return 0;
}
