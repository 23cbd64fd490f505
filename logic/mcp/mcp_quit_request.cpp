#include "logic/mcp/mcp_quit_request.h"

#include <utility>

#include "base/iso8601.h"
#include "base/json_record.h"

namespace brindle {

JsonObject encode(const MCPQuitRequest& request) {
  JsonObject object;
  object.append("id", request.id);
  object.append("time", writeIso8601(request.time));
  object.append("kind", request.kind);
  appendIfPresent(object, "pid", request.pid);
  appendIfPresent(object, "port", request.port);
  appendIfPresent(object, "sessionPID", request.sessionPID);
  appendIfPresent(object, "note", request.note);
  object.append("status", request.status);
  return object;
}

std::optional<MCPQuitRequest> decodeMCPQuitRequest(const JsonObject& object) {
  auto id = stringMember(object, "id");
  const auto time = isoDateMember(object, "time");
  auto kind = stringMember(object, "kind");
  auto status = stringMember(object, "status");
  if (!id || !time || !kind || !status) return std::nullopt;
  return MCPQuitRequest{.id = std::move(*id),
                        .time = *time,
                        .kind = std::move(*kind),
                        .pid = int32Member(object, "pid"),
                        .port = int32Member(object, "port"),
                        .sessionPID = int32Member(object, "sessionPID"),
                        .note = stringMember(object, "note"),
                        .status = std::move(*status)};
}

}  // namespace brindle
