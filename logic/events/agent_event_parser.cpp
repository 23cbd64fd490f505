#include "logic/events/agent_event_parser.h"

#include <utility>

#include "base/json_reader.h"
#include "base/json_record.h"
#include "base/text.h"
#include "base/uuid.h"

namespace brindle::AgentEventParser {
namespace {

constexpr std::string_view kCutMark = "...";

std::optional<AgentEventKind> kindOfNotification(const JsonObject& payload, const std::optional<std::string>& message) {
  if (const auto type = stringMember(payload, "notification_type")) {
    if (*type == "permission_prompt" || *type == "elicitation_dialog") return AgentEventKind::needsApproval;
    if (*type == "idle_prompt") return AgentEventKind::waiting;
    return std::nullopt;
  }
  // Versions that send no type tell the two apart by their wording alone.
  if (message && lowerCase(*message).find("permission") != std::string::npos) return AgentEventKind::needsApproval;
  return AgentEventKind::waiting;
}

std::optional<AgentEventKind> kindOfClaudeHook(const JsonObject& payload, const std::optional<std::string>& message) {
  const auto name = stringMember(payload, "hook_event_name");
  if (name == "Stop") return AgentEventKind::finished;
  if (name == "Notification") return kindOfNotification(payload, message);
  return std::nullopt;
}

std::optional<AgentEventKind> kindOfCodexNotify(const JsonObject& payload) {
  const auto type = stringMember(payload, "type");
  if (type == "agent-turn-complete") return AgentEventKind::finished;
  if (type == "approval-requested") return AgentEventKind::needsApproval;
  return std::nullopt;
}

}  // namespace

std::optional<AgentEvent> parseClaudeHook(std::string_view data, std::optional<std::int32_t> pid, Date time) {
  const auto document = parseJson(data);
  const JsonObject* payload = document ? document->object() : nullptr;
  if (payload == nullptr) return std::nullopt;
  auto message = stringMember(*payload, "message");
  if (message) message = cleanMessage(*message);
  const auto kind = kindOfClaudeHook(*payload, message);
  if (!kind) return std::nullopt;
  return AgentEvent{.id = randomUuidText(),
                    .time = time,
                    .agent = std::string(claudeName),
                    .kind = *kind,
                    .message = std::move(message),
                    .cwd = stringMember(*payload, "cwd"),
                    .pid = pid,
                    .sessionID = stringMember(*payload, "session_id")};
}

std::optional<AgentEvent> parseCodexNotify(std::string_view json, std::optional<std::int32_t> pid, Date time) {
  const auto document = parseJson(json);
  const JsonObject* payload = document ? document->object() : nullptr;
  if (payload == nullptr) return std::nullopt;
  const auto kind = kindOfCodexNotify(*payload);
  if (!kind) return std::nullopt;
  auto session = stringMember(*payload, "thread-id");
  if (!session) session = stringMember(*payload, "conversation-id");
  return AgentEvent{.id = randomUuidText(),
                    .time = time,
                    .agent = std::string(codexName),
                    .kind = *kind,
                    .cwd = stringMember(*payload, "cwd"),
                    .pid = pid,
                    .sessionID = std::move(session)};
}

std::string cleanMessage(std::string_view text) {
  const auto pieces = newlinePieces(text);
  if (pieces.empty()) return {};
  const std::string_view line = pieces.front();
  if (firstCharacters(line, messageLimit).size() == line.size()) return std::string(line);
  std::string cut(firstCharacters(line, messageLimit - kCutMark.size()));
  cut += kCutMark;
  return cut;
}

}  // namespace brindle::AgentEventParser
