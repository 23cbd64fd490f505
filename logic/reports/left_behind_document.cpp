#include "logic/reports/left_behind_document.h"

#include "logic/reports/encode_rows.h"
#include "logic/sessions/record_json.h"

namespace brindle {

std::vector<LeftBehindDocument> leftBehindRows(const std::vector<LeftBehind>& processes) {
  std::vector<LeftBehindDocument> rows;
  rows.reserve(processes.size());
  for (const LeftBehind& each : processes) {
    rows.push_back({.pid = each.process.pid,
                    .command = each.process.commandLine,
                    .origin = each.origin,
                    .memoryBytes = each.process.footprint,
                    .ports = each.process.ports});
  }
  return rows;
}

JsonObject encode(const LeftBehindDocument& row) {
  JsonObject object;
  object.append("command", row.command);
  object.append("memoryBytes", unsignedNumber(row.memoryBytes));
  object.append("origin", row.origin);
  object.append("pid", row.pid);
  object.append("ports", portsToJson(row.ports));
  return object;
}

JsonObject encode(const GhostsDocument& document) {
  JsonObject object;
  object.append("command", document.command);
  object.append("leftBehind", encodeRows(document.leftBehind));
  object.append("likely", encodeRows(document.likely));
  object.append("schema", document.schema);
  return object;
}

}  // namespace brindle
