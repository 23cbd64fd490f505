#include "logic/mcp/mcp_config_snippet.h"

#include <algorithm>

#include "base/json_value.h"
#include "base/json_writer.h"
#include "base/text.h"

namespace brindle {
namespace {

bool needsNoQuoting(char byte) {
  constexpr std::string_view kMarks = "/._-+:%@";
  return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9') ||
         kMarks.find(byte) != std::string_view::npos;
}

std::string shellWord(std::string_view text) {
  if (!text.empty() && std::all_of(text.begin(), text.end(), needsNoQuoting)) return std::string(text);
  std::string word = "'";
  for (const char byte : text) {
    if (byte == '\'') {
      word += R"('\'')";
    } else {
      word.push_back(byte);
    }
  }
  return word + "'";
}

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
