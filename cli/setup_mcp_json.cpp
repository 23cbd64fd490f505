#include "cli/setup_mcp_json.h"

#include "base/json_reader.h"
#include "base/json_record.h"
#include "cli/setup_json_text.h"

namespace brindle {
namespace {

constexpr std::string_view kServers = "mcpServers";
constexpr std::string_view kName = "brindle";

JsonObject serverOf(std::string_view program) { return {{"command", program}, {"args", JsonArray{"mcp"}}}; }

std::string problemOf(const std::optional<JsonPlace>& root) {
  if (!root) return "not valid JSON";
  if (root->kind != JsonPlace::Kind::object) return "expected a JSON object";
  const JsonPlace* servers = root->find(kServers);
  if (servers != nullptr && servers->kind != JsonPlace::Kind::object) return "\"mcpServers\" is not an object";
  return {};
}

bool runsMcp(const JsonObject& server) {
  const JsonArray* arguments = arrayMember(server, "args");
  return arguments != nullptr && !arguments->empty() && arguments->front() == JsonValue("mcp");
}

}  // namespace

ServerState jsonServerState(std::string_view text, std::string_view program) {
  const auto document = parseJson(text);
  const JsonObject* root = document ? document->object() : nullptr;
  const JsonObject* servers = root == nullptr ? nullptr : objectMember(*root, kServers);
  const JsonValue* server = servers == nullptr ? nullptr : servers->find(kName);
  if (server == nullptr) return ServerState::absent;
  if (server->object() == nullptr || !runsMcp(*server->object())) return ServerState::foreign;
  const auto command = stringMember(*server->object(), "command");
  if (!command || !isOurProgram(*command, program)) return ServerState::foreign;
  return *command == program ? ServerState::same : ServerState::stale;
}

EditedText withJsonServer(std::string_view text, std::string_view program) {
  EditedText edited{.text = std::string(text)};
  const auto root = placesOf(text);
  edited.problem = problemOf(root);
  if (!edited.problem.empty()) return edited;
  const JsonPlace* servers = root->find(kServers);
  switch (jsonServerState(text, program)) {
    case ServerState::same:
      break;
    case ServerState::foreign:
      edited.declined.emplace_back("an MCP server \"brindle\" of somebody else is registered; left alone");
      break;
    case ServerState::stale:
      // Only the path: whatever else somebody has added to the entry stays.
      edited.text = withValue(text, *servers->find(kName)->find("command"), program);
      break;
    case ServerState::absent:
      edited.text = servers == nullptr
                        ? withMember(text, *root, {std::string(kServers), JsonObject{{"brindle", serverOf(program)}}})
                        : withMember(text, *servers, {std::string(kName), serverOf(program)});
      break;
  }
  return edited;
}

EditedText withoutJsonServer(const ServerTexts& texts, std::string_view program) {
  EditedText edited{.text = std::string(texts.text)};
  const auto root = placesOf(texts.text);
  edited.problem = problemOf(root);
  if (!edited.problem.empty()) return edited;
  const ServerState state = jsonServerState(texts.text, program);
  if (state == ServerState::absent || state == ServerState::foreign) return edited;
  const JsonPlace* servers = root->find(kServers);
  const auto before = parseJson(texts.before);
  const bool kept = before && before->object() != nullptr && before->object()->find(kServers) != nullptr;
  const bool onlyOurs = servers->children.size() == 1 && !kept;
  const JsonPlace& container = onlyOurs ? *root : *servers;
  const JsonPlace* child = onlyOurs ? servers : servers->find(kName);
  edited.text = withoutChild(texts.text, container, static_cast<std::size_t>(child - container.children.data()));
  return edited;
}

}  // namespace brindle
