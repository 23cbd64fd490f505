#include "logic/sessions/agent_session.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "base/json_record.h"
#include "base/text.h"
#include "logic/sessions/record_json.h"

namespace brindle {
namespace {

struct Phrase {
  SessionChildKind kind;
  std::string_view one;
  std::string_view several;
};

/// In the order in which a summary names the kinds.
constexpr auto kPhrases = std::to_array<Phrase>({
    {SessionChildKind::devServer, "1 dev server", " dev servers"},
    {SessionChildKind::mcp, "1 MCP server", " MCP servers"},
    {SessionChildKind::testRunner, "1 test runner", " test runners"},
    {SessionChildKind::browser, "1 browser", " browsers"},
    {SessionChildKind::other, "1 other process", " other processes"},
});

std::optional<std::vector<SessionChild>> childrenMember(const JsonObject& object) {
  const JsonArray* array = arrayMember(object, "children");
  if (array == nullptr) return std::nullopt;
  std::vector<SessionChild> children;
  children.reserve(array->size());
  for (const JsonValue& element : *array) {
    auto child = element.object() == nullptr ? std::nullopt : decodeSessionChild(*element.object());
    if (!child) return std::nullopt;
    children.push_back(std::move(*child));
  }
  return children;
}

}  // namespace

std::string sessionSummary(const AgentSession& session) {
  std::vector<std::string> phrases;
  for (const Phrase& phrase : kPhrases) {
    const auto count = std::count_if(session.children.begin(), session.children.end(),
                                     [&](const SessionChild& child) { return child.kind == phrase.kind; });
    if (count == 1) phrases.emplace_back(phrase.one);
    if (count > 1) phrases.push_back(std::to_string(count).append(phrase.several));
  }
  return phrases.empty() ? "Nothing else yet" : joined(phrases, ", ");
}

JsonObject encode(const SessionChild& child) {
  JsonObject object;
  object.append("pid", child.pid);
  object.append("name", child.name);
  object.append("commandLine", child.commandLine);
  object.append("kind", textOf(child.kind));
  object.append("ports", portsToJson(child.ports));
  object.append("footprint", unsignedNumber(child.footprint));
  return object;
}

JsonObject encode(const AgentSession& session) {
  JsonArray children;
  children.reserve(session.children.size());
  for (const SessionChild& child : session.children) children.emplace_back(encode(child));

  JsonObject object;
  object.append("pid", session.pid);
  object.append("startTime", session.startTime);
  appendIfFinite(object, "start", secondsSince1970(session.start));
  object.append("agent", session.agent);
  appendIfPresent(object, "project", session.project);
  appendIfPresent(object, "cwd", session.cwd);
  object.append("activity", textOf(session.activity));
  object.append("footprint", unsignedNumber(session.footprint));
  object.append("children", std::move(children));
  object.append("ports", portsToJson(session.ports));
  if (session.cpuPercent) appendIfFinite(object, "cpuPercent", *session.cpuPercent);
  return object;
}

std::optional<SessionChild> decodeSessionChild(const JsonObject& object) {
  const auto pid = int32Member(object, "pid");
  auto name = stringMember(object, "name");
  auto commandLine = stringMember(object, "commandLine");
  const auto kind = enumMember<SessionChildKind>(object, "kind");
  auto ports = portsMember(object, "ports");
  const auto footprint = uint64Member(object, "footprint");
  if (!pid || !name || !commandLine || !kind || !ports || !footprint) return std::nullopt;
  return SessionChild{.pid = *pid,
                      .name = std::move(*name),
                      .commandLine = std::move(*commandLine),
                      .kind = *kind,
                      .ports = std::move(*ports),
                      .footprint = *footprint};
}

std::optional<AgentSession> decodeAgentSession(const JsonObject& object) {
  const auto pid = int32Member(object, "pid");
  const auto startTime = integerMember(object, "startTime");
  const auto start = secondsDateMember(object, "start");
  auto agent = stringMember(object, "agent");
  const auto activity = enumMember<SessionActivity>(object, "activity");
  const auto footprint = uint64Member(object, "footprint");
  auto children = childrenMember(object);
  auto ports = portsMember(object, "ports");
  if (!pid || !startTime || !start || !agent || !activity || !footprint || !children || !ports) return std::nullopt;
  return AgentSession{.pid = *pid,
                      .startTime = *startTime,
                      .start = *start,
                      .agent = std::move(*agent),
                      .project = stringMember(object, "project"),
                      .cwd = stringMember(object, "cwd"),
                      .activity = *activity,
                      .footprint = *footprint,
                      .children = std::move(*children),
                      .ports = std::move(*ports),
                      .cpuPercent = realMember(object, "cpuPercent")};
}

}  // namespace brindle

std::size_t std::hash<brindle::SessionChild>::operator()(const brindle::SessionChild& child) const noexcept {
  return brindle::hashIdentity({.pid = child.pid, .name = child.name});
}

std::size_t std::hash<brindle::AgentSession>::operator()(const brindle::AgentSession& session) const noexcept {
  return brindle::hashIdentity({session.pid, session.startTime, session.agent});
}
