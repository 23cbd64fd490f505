#include "logic/events/agent_event.h"

#include <utility>

#include "base/iso8601.h"
#include "base/json_record.h"

namespace brindle {

std::string sessionKey(const AgentEvent& event) {
  if (event.sessionID) return event.agent + ":" + *event.sessionID;
  return event.agent + ":pid" + std::to_string(event.pid.value_or(0));
}

JsonObject encode(const AgentEvent& event, DateForm dates) {
  JsonObject object;
  object.append("id", event.id);
  object.append("time", dates == DateForm::iso8601 ? JsonValue(writeIso8601(event.time))
                                                   : JsonValue(secondsSince1970(event.time)));
  object.append("agent", event.agent);
  object.append("kind", textOf(event.kind));
  appendIfPresent(object, "message", event.message);
  appendIfPresent(object, "cwd", event.cwd);
  appendIfPresent(object, "pid", event.pid);
  appendIfPresent(object, "sessionID", event.sessionID);
  return object;
}

std::optional<AgentEvent> decodeAgentEvent(const JsonObject& object, DateForm dates) {
  auto id = stringMember(object, "id");
  const auto time = dates == DateForm::iso8601 ? isoDateMember(object, "time") : secondsDateMember(object, "time");
  auto agent = stringMember(object, "agent");
  const auto kind = enumMember<AgentEventKind>(object, "kind");
  if (!id || !time || !agent || !kind) return std::nullopt;
  return AgentEvent{.id = std::move(*id),
                    .time = *time,
                    .agent = std::move(*agent),
                    .kind = *kind,
                    .message = stringMember(object, "message"),
                    .cwd = stringMember(object, "cwd"),
                    .pid = int32Member(object, "pid"),
                    .sessionID = stringMember(object, "sessionID")};
}

}  // namespace brindle
