#include "logic/mcp/mcp_server.h"

#include "base/json_reader.h"
#include "base/json_record.h"
#include "logic/mcp/mcp_text.h"
#include "logic/mcp/mcp_tools.h"

namespace brindle {
namespace {

constexpr std::string_view kProtocolVersion = "2024-11-05";
constexpr std::string_view kServerName = "brindle";
constexpr std::string_view kServerVersion = "1.3.0";
constexpr std::string_view kInstructions =
    "Read only. Brindle never stops a process from this server. request_quit asks the person in the Brindle app, and "
    "nothing stops until they confirm. System processes and other users' processes are left alone. This covers every "
    "AI agent, not one vendor.";
constexpr std::string_view kNotificationPrefix = "notifications/";

JsonValue initializeResult() {
  return JsonObject{
      {"protocolVersion", kProtocolVersion},
      {"capabilities", JsonObject{{"tools", JsonObject()}}},
      {"serverInfo", JsonObject{{"name", kServerName}, {"version", kServerVersion}}},
      {"instructions", kInstructions},
  };
}

std::string envelope(const JsonValue* id, std::string key, JsonValue value) {
  JsonObject reply{{"jsonrpc", "2.0"}};
  reply.append(std::move(key), std::move(value));
  if (id != nullptr && !id->isNull()) reply.append("id", *id);
  return mcpText(std::move(reply));
}

}  // namespace

namespace MCPReply {

std::string success(const JsonValue* id, JsonValue result) { return envelope(id, "result", std::move(result)); }

std::string error(const JsonValue* id, Error error) {
  return envelope(id, "error", JsonObject{{"code", error.code}, {"message", error.message}});
}

}  // namespace MCPReply

std::optional<std::string> MCPServer::handle(std::string_view message, Date now) const {
  const std::optional<JsonValue> parsed = parseJson(message);
  const JsonObject* object = parsed ? parsed->object() : nullptr;
  if (object == nullptr) return MCPReply::error(nullptr, {MCPReply::kParseError, "Parse error"});
  return handle(*object, now);
}

std::optional<std::string> MCPServer::handle(const JsonObject& message, Date now) const {
  const std::string method = stringMember(message, "method").value_or("");
  const JsonValue* id = message.find("id");
  if (id == nullptr && method.starts_with(kNotificationPrefix)) return std::nullopt;
  if (method == "initialize") return MCPReply::success(id, initializeResult());
  if (method == "ping") return MCPReply::success(id, JsonObject());
  if (method == "tools/list") return MCPReply::success(id, JsonObject{{"tools", MCPTools::descriptors()}});
  if (method == "tools/call") {
    const JsonObject* params = objectMember(message, "params");
    return MCPReply::success(id, MCPTools::call(*this, params == nullptr ? JsonObject() : *params, now));
  }
  return MCPReply::error(id, {MCPReply::kMethodNotFound, "Method not found"});
}

}  // namespace brindle
