#include "cli/setup_codex_config.h"

#include <optional>
#include <vector>

#include "base/json_writer.h"
#include "inventory/toml_table.h"
#include "logic/mcp/mcp_config_snippet.h"

namespace brindle {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
/// A part of ours in the file, between two marker lines that begin with these texts.
struct Block {
  std::string_view begin;
  std::string_view end;
};
constexpr Block kNotify = {"# >>> brindle notify", "# <<< brindle notify"};
constexpr Block kServer = {"# >>> brindle mcp", "# <<< brindle mcp"};
constexpr std::string_view kHint = " >>> 'brindle setup codex --undo' takes these lines away";

std::string lineEndOf(std::string_view text) { return text.find("\r\n") == std::string_view::npos ? "\n" : "\r\n"; }

std::string blockText(const Block& block, const std::vector<std::string>& lines, const std::string& lineEnd) {
  std::string text = std::string(block.begin) + std::string(kHint) + lineEnd;
  for (const std::string& line : lines) text += line + lineEnd;
  return text + std::string(block.end);
}

/// The offset of the line that begins with `marker`, from `from` on.
std::size_t lineWith(std::string_view text, std::string_view marker, std::size_t from) {
  for (std::size_t at = text.find(marker, from); at != std::string_view::npos; at = text.find(marker, at + 1)) {
    if (at == 0 || text[at - 1] == '\n' || (at == kByteOrderMark.size() && text.starts_with(kByteOrderMark))) return at;
  }
  return std::string_view::npos;
}

/// `text` without the block. A marker that begins one and has no end of its own stays: what follows it is not ours. One
/// that ends the file without a line end took the place of a last line without one.
std::string without(std::string_view text, const Block& block) {
  std::size_t begin = lineWith(text, block.begin, 0);
  const std::size_t last = begin == std::string_view::npos ? begin : lineWith(text, block.end, begin);
  if (last == std::string_view::npos) return std::string(text);
  for (std::size_t next = begin; next < last; next = lineWith(text, block.begin, next + 1)) begin = next;
  const std::size_t lineEnd = text.find('\n', last);
  std::string head(text.substr(0, begin));
  if (lineEnd != std::string_view::npos) return head + std::string(text.substr(lineEnd + 1));
  if (head.ends_with('\n')) head.pop_back();
  if (head.ends_with('\r')) head.pop_back();
  return head;
}

std::string withNotifyBlock(std::string_view text, std::string_view program) {
  const std::size_t at = text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0;
  const std::string lineEnd = lineEndOf(text);
  const std::string line = "notify = [" + writeJsonString(program, {.escapeSlashes = false}) + ", \"notify\"]";
  return std::string(text.substr(0, at)) + blockText(kNotify, {line}, lineEnd) + lineEnd + std::string(text.substr(at));
}

std::string withServerBlock(std::string_view text, std::string_view program) {
  const std::string lineEnd = lineEndOf(text);
  std::vector<std::string> lines;
  const std::string table = MCPConfigSnippet::make(MCPClient::codex, program).text;
  for (std::size_t at = 0; at < table.size();) {
    const std::size_t end = std::min(table.find('\n', at), table.size());
    lines.push_back(table.substr(at, end - at));
    at = end + 1;
  }
  const std::string block = blockText(kServer, lines, lineEnd);
  if (text.empty() || text == kByteOrderMark || text.ends_with('\n')) return std::string(text) + block + lineEnd;
  return std::string(text) + lineEnd + block;
}

/// The program and whether it is run with the one word of ours behind it.
struct Ran {
  std::string program;
  bool asOurs = false;
};

std::optional<Ran> notifyOf(const toml::table& config) {
  const toml::node* node = config.get("notify");
  if (node == nullptr) return std::nullopt;
  const toml::array* words = node->as_array();
  if (words == nullptr || words->empty()) return Ran{};
  return Ran{tomlText(words->get(0)).value_or(""), words->size() > 1 && tomlText(&words->back()) == "notify"};
}

bool isOurs(const Ran& ran, std::string_view program) { return ran.asOurs && isOurProgram(ran.program, program); }

ServerState serverState(const toml::table& config, std::string_view program) {
  const auto server = config.at_path("mcp_servers.brindle");
  if (!server) return ServerState::absent;
  const auto command = tomlText(server.at_path("command").node());
  const auto word = tomlText(server.at_path("args[0]").node());
  if (!command || word != "mcp" || !isOurProgram(*command, program)) return ServerState::foreign;
  return *command == program ? ServerState::same : ServerState::stale;
}

void addNotify(EditedText& edited, std::string_view program) {
  const std::string bare = without(edited.text, kNotify);
  const auto config = parseToml(bare);
  if (!config) return;  // the markers stood elsewhere than around our lines
  const auto ran = notifyOf(*config);
  if (!ran) {
    edited.text = withNotifyBlock(bare, program);
  } else if (!isOurs(*ran, program)) {
    edited.declined.push_back("notify already runs " + (ran->program.empty() ? "something else" : ran->program) +
                              "; left alone");
  }
}

void addServer(EditedText& edited, std::string_view program) {
  const std::string bare = without(edited.text, kServer);
  const auto config = parseToml(bare);
  if (!config) return;
  switch (serverState(*config, program)) {
    case ServerState::absent:
      edited.text = withServerBlock(bare, program);
      break;
    case ServerState::foreign:
      edited.declined.emplace_back("an MCP server \"brindle\" of somebody else is registered; left alone");
      break;
    case ServerState::same:
    case ServerState::stale:
      break;  // registered by other means, which also put it right
  }
}

}  // namespace

EditedText withCodexParts(std::string_view config, const CodexParts& parts) {
  EditedText edited{.text = std::string(config)};
  if (!parseToml(config)) {
    edited.problem = "not valid TOML";
    return edited;
  }
  addNotify(edited, parts.program);
  if (parts.server) addServer(edited, parts.program);
  const auto after = parseToml(edited.text);
  const auto ran = after ? notifyOf(*after) : std::nullopt;
  if (!after || !ran) return {.text = std::string(config), .problem = "nothing can be added to it as it is written"};
  return edited;
}

EditedText withoutCodexParts(std::string_view config, const CodexParts& parts) {
  EditedText edited{.text = std::string(config)};
  if (!parseToml(config)) {
    edited.problem = "not valid TOML";
    return edited;
  }
  std::string bare = without(without(config, kServer), kNotify);
  const auto after = parseToml(bare);
  if (!after) {
    edited.problem = "without the lines between the markers it would not be valid TOML";
    return edited;
  }
  const auto ran = notifyOf(*after);
  if (ran && isOurs(*ran, parts.program)) {
    edited.declined.emplace_back("notify runs brindle, but not between our marker lines; left alone");
  }
  const ServerState state = serverState(*after, parts.program);
  if (parts.server && (state == ServerState::same || state == ServerState::stale)) {
    edited.declined.emplace_back("the MCP server is not between our marker lines; left alone");
  }
  edited.text = std::move(bare);
  return edited;
}

ServerState tomlServerState(std::string_view config, std::string_view program) {
  const auto table = parseToml(config);
  return table ? serverState(*table, program) : ServerState::absent;
}

}  // namespace brindle
