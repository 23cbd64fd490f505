#include "logic/mcp/mcp_tools.h"

#include <array>
#include <cmath>
#include <limits>

#include "base/json_record.h"
#include "logic/mcp/mcp_text.h"
#include "logic/mcp/note_redaction.h"

namespace brindle::MCPTools {
namespace {

enum class Arguments { none, target, targetAndNote };

struct Tool {
  std::string_view name;
  std::string_view description;
  Arguments arguments;
};

constexpr auto kTools = std::to_array<Tool>({
    {"status", "What Brindle sees right now: ghosts, dev servers, live agent sessions, memory and ports.",
     Arguments::none},
    {"ports", "Which processes are listening, and whether each one is yours.", Arguments::none},
    {"agents", "Live agent sessions and the processes they started, plus crash orphans left behind.", Arguments::none},
    {"safety", "Whether Brindle would ask you before stopping a pid, a port, or a session. This never stops anything.",
     Arguments::target},
    {"request_quit",
     "Ask the person using Brindle to confirm a stop. Nothing is signalled here. System processes and other users are "
     "refused.",
     Arguments::targetAndNote},
});

constexpr std::string_view kMissingTarget = "Say which pid, port or sessionPid.";

JsonObject properties(Arguments arguments) {
  JsonObject object;
  if (arguments == Arguments::none) return object;
  for (const char* name : {"pid", "port", "sessionPid"}) object.append(name, JsonObject{{"type", "integer"}});
  if (arguments == Arguments::targetAndNote) {
    object.append("note", JsonObject{{"type", "string"}, {"description", "Why you are asking. Secrets are redacted."}});
  }
  return object;
}

std::optional<std::int32_t> integerArgument(const JsonObject& arguments, std::string_view key) {
  const JsonValue* value = arguments.find(key);
  const JsonNumber* number = value == nullptr ? nullptr : value->number();
  if (number == nullptr) return std::nullopt;
  const std::optional<double> real = number->real();
  if (!real) return std::nullopt;
  const double whole = std::trunc(*real);  // exact: a double holds every 32-bit integer
  if (whole < std::numeric_limits<std::int32_t>::min() || whole > std::numeric_limits<std::int32_t>::max()) {
    return std::nullopt;
  }
  return static_cast<std::int32_t>(whole);
}

std::optional<MCPTarget> targetArgument(const JsonObject& arguments) {
  const MCPTarget target{integerArgument(arguments, "pid"), integerArgument(arguments, "port"),
                         integerArgument(arguments, "sessionPid")};
  if (target == MCPTarget{}) return std::nullopt;
  return target;
}

// The target as the log shows it.
std::string targetText(const MCPTarget& target) {
  if (target.sessionPid) return "session " + std::to_string(*target.sessionPid);
  const std::string pid = target.pid ? "pid " + std::to_string(*target.pid) : "";
  const std::string port = target.port ? "port " + std::to_string(*target.port) : "";
  if (target.pid && target.port) return pid + " " + port;
  if (target.port) return port;
  return target.pid ? pid : "unknown";
}

// One call of one tool: what was asked, and the one place from which it is recorded.
struct Call {
  const MCPServer& server;
  std::string_view tool;
  const JsonObject& arguments;
  Date now;

  void record(std::string_view summary, std::string_view result) const {
    server.log(MCPLogEntry{now, std::string(tool), std::string(summary), std::string(result)});
  }
  [[nodiscard]] JsonObject missingTarget() const {
    record("missing target", "error");
    return textResult(kMissingTarget, true);
  }
};

JsonObject report(const Call& call, const std::string& text) {
  call.record(call.tool, "ok");
  return textResult(text, false);
}

JsonObject agents(const Call& call) {
  const Result<std::string> text = call.server.agents();
  if (text) return report(call, *text);
  call.record(call.tool, "error");
  return textResult("Brindle could not list the agents: " + text.error().message() + ".", true);
}

JsonObject safety(const Call& call) {
  const std::optional<MCPTarget> target = targetArgument(call.arguments);
  if (!target) return call.missingTarget();
  const MCPSafetyVerdict verdict = call.server.safety(*target);
  call.record(targetText(*target), verdict.verdict);
  return textResult(mcpText(JsonObject{
                        {"verdict", verdict.verdict}, {"reason", verdict.reason}, {"name", verdict.name.value_or("")}}),
                    false);
}

std::string_view kindOf(const MCPTarget& target) {
  if (target.sessionPid) return "session";
  return target.pid ? "pid" : "port";
}

JsonObject requestQuit(const Call& call) {
  const std::optional<MCPTarget> target = targetArgument(call.arguments);
  if (!target) return call.missingTarget();
  std::optional<std::string> note = stringMember(call.arguments, "note");
  if (note) note = redactNote(*note);

  const MCPSafetyVerdict verdict = call.server.safety(*target);
  if (verdict.verdict != SafetyGate::kAskFirst) {
    call.record(targetText(*target), "refused: " + verdict.reason);
    return textResult(
        mcpText(JsonObject{{"accepted", false}, {"verdict", verdict.verdict}, {"reason", verdict.reason}}), false);
  }
  const Result<std::string> id = call.server.requestQuit({std::string(kindOf(*target)), *target, std::move(note)});
  if (!id) {
    call.record(targetText(*target), "error");
    return textResult("Brindle could not file the request: " + id.error().message() + ".", true);
  }
  call.record(targetText(*target), "needs confirmation " + *id);
  const std::string_view message =
      call.server.appRunning ? "Brindle will ask you in the app. Nothing stops until you confirm."
                             : "Brindle isn't open. The request waits until you open it, and nothing stops until you "
                               "confirm there.";
  return textResult(mcpText(JsonObject{{"accepted", true},
                                       {"requestId", *id},
                                       {"verdict", SafetyGate::kAskFirst},
                                       {"appRunning", call.server.appRunning},
                                       {"message", message}}),
                    false);
}

}  // namespace

JsonArray descriptors() {
  JsonArray array;
  for (const Tool& tool : kTools) {
    array.push_back(JsonObject{
        {"name", tool.name},
        {"description", tool.description},
        {"inputSchema", JsonObject{{"type", "object"}, {"properties", properties(tool.arguments)}}},
    });
  }
  return array;
}

JsonObject call(const MCPServer& server, const JsonObject& params, Date now) {
  const std::string name = stringMember(params, "name").value_or("");
  const JsonObject* given = objectMember(params, "arguments");
  const JsonObject none;
  const Call call{server, name.empty() ? "tools/call" : std::string_view(name), given == nullptr ? none : *given, now};

  if (!server.enabled) {
    call.record("off", "MCP is off");
    return textResult(server.offMessage, true);
  }
  if (name == "status") return report(call, server.status());
  if (name == "ports") return report(call, server.ports());
  if (name == "agents") return agents(call);
  if (name == "safety") return safety(call);
  if (name == "request_quit") return requestQuit(call);
  call.record("unknown tool", "error");
  return textResult("Unknown tool.", true);
}

JsonObject textResult(std::string_view text, bool isError) {
  return JsonObject{
      {"content", JsonArray{JsonObject{{"type", "text"}, {"text", text}}}},
      {"isError", isError},
  };
}

}  // namespace brindle::MCPTools
