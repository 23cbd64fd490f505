#include "logic/mcp/mcp_config_snippet.h"

#include "base/json_value.h"
#include "base/json_writer.h"
#include "base/text.h"
#include "logic/mcp/shell_word.h"

namespace brindle {
namespace {

std::string jsonText(std::string_view path) {
  if (!isValidUtf8(path)) return std::string(MCPConfigSnippet::kNoJson);
  const JsonObject server{{"command", path}, {"args", JsonArray{"mcp"}}};
  const JsonObject root{{"mcpServers", JsonObject{{"brindle", server}}}};
  return writeJson(root, {.pretty = true, .sortedKeys = true, .escapeSlashes = false});
}

std::string tomlText(std::string_view path) {
  std::string quoted = "\"";
  for (const char byte : path) {
    if (byte == '\\' || byte == '"') quoted.push_back('\\');
    quoted.push_back(byte);
  }
  return "[mcp_servers.brindle]\ncommand = " + quoted + "\"\nargs = [\"mcp\"]";
}

}  // namespace

MCPConfigSnippet MCPConfigSnippet::make(MCPClient client, std::string_view path) {
  switch (client) {
    case MCPClient::claudeCode:
      return {.title = "Run in Terminal", .text = "claude mcp add --scope user brindle -- " + shellWord(path) + " mcp"};
    case MCPClient::cursor:
      return {.title = "Add to ~/.cursor/mcp.json", .text = jsonText(path)};
    case MCPClient::codex:
      return {.title = "Add to ~/.codex/config.toml", .text = tomlText(path)};
  }
  return {};
}

}  // namespace brindle
