#include "logic/reports/report_documents.h"

#include "base/json_record.h"
#include "logic/reports/encode_rows.h"
#include "logic/sessions/record_json.h"

namespace brindle {

// Keys are appended in alphabetical order, the order in which they are written: sorting them then costs nothing.
// The rows' encoders are found by their argument, which an unnamed namespace would prevent.

static JsonObject encode(const PortListener& listener) {
  JsonObject object;
  object.append("name", listener.name);
  object.append("ownedByCurrentUser", listener.ownedByCurrentUser);
  object.append("pid", listener.pid);
  object.append("port", listener.port);
  appendIfPresent(object, "project", listener.project);
  appendIfPresent(object, "protected", listener.protectedReason);
  return object;
}

static JsonObject encode(const AgentChildDocument& child) {
  JsonObject object;
  object.append("kind", child.kind);
  object.append("memoryBytes", unsignedNumber(child.memoryBytes));
  object.append("name", child.name);
  object.append("pid", child.pid);
  object.append("ports", portsToJson(child.ports));
  return object;
}

static JsonObject encode(const IdleRow& row) {
  JsonObject object;
  object.append("memoryBytes", unsignedNumber(row.memoryBytes));
  object.append("name", row.name);
  object.append("pid", row.pid);
  object.append("ports", portsToJson(row.ports));
  appendIfPresent(object, "project", row.project);
  appendIfPresent(object, "protected", row.protectedReason);
  object.append("uptimeSeconds", row.uptimeSeconds);
  return object;
}

static JsonObject encode(const AgentSessionDocument& session) {
  JsonObject object;
  object.append("activity", session.activity);
  object.append("agent", session.agent);
  object.append("memoryBytes", unsignedNumber(session.memoryBytes));
  object.append("pid", session.pid);
  object.append("ports", portsToJson(session.ports));
  appendIfPresent(object, "project", session.project);
  object.append("started", encodeRows(session.started));
  object.append("uptimeSeconds", session.uptimeSeconds);
  return object;
}

JsonObject encode(const StatusDocument& document) {
  JsonObject object;
  object.append("agentSessions", document.agentSessions);
  object.append("command", document.command);
  object.append("devServers", document.devServers);
  object.append("ghosts", document.ghosts);
  object.append("memoryBytes", unsignedNumber(document.memoryBytes));
  object.append("ports", portsToJson(document.ports));
  object.append("schema", document.schema);
  object.append("summary", document.summary);
  return object;
}

JsonObject encode(const PortsDocument& document) {
  JsonObject object;
  object.append("command", document.command);
  object.append("listeners", encodeRows(document.listeners));
  object.append("schema", document.schema);
  return object;
}

JsonObject encode(const AgentsDocument& document) {
  JsonObject object;
  object.append("command", document.command);
  object.append("leftBehind", encodeRows(document.leftBehind));
  object.append("schema", document.schema);
  object.append("sessions", encodeRows(document.sessions));
  return object;
}

JsonObject encode(const IdleDocument& document) {
  JsonObject object;
  object.append("command", document.command);
  object.append("idle", document.idle);
  object.append("minimumAgeSeconds", document.minimumAgeSeconds);
  object.append("schema", document.schema);
  object.append("skipped", encodeRows(document.skipped));
  object.append("stop", encodeRows(document.stop));
  object.append("summary", document.summary);
  return object;
}

}  // namespace brindle
