#include "cli/agent_text.h"

#include <algorithm>
#include <cstdint>
#include <optional>

#include "base/text.h"
#include "inventory/valid_text.h"
#include "logic/mcp/note_redaction.h"

namespace brindle {
namespace {

constexpr std::string_view kReplacement = "\uFFFD";
constexpr std::string_view kCut = "...";

// How long the escape sequence at the front is, its escape included: "ESC [ … final", "ESC ] … BEL" or "ESC ] … ESC \"
// (so for P, X, ^ and _), else ESC and one byte. An unfinished one reaches to the end.
std::size_t escapeLength(std::string_view text) {
  if (text.size() < 2) return text.size();
  if (text[1] == '[') {
    for (std::size_t i = 2; i < text.size(); ++i) {
      if (text[i] >= 0x40 && text[i] <= 0x7E) return i + 1;
    }
    return text.size();
  }
  if (std::string_view("]PX^_").find(text[1]) != std::string_view::npos) {
    const std::size_t bell = text.find('\a', 2);
    const std::size_t terminator = text.find("\x1B\\", 2);
    if (bell == std::string_view::npos && terminator == std::string_view::npos) return text.size();
    return bell < terminator ? bell + 1 : terminator + 2;
  }
  return static_cast<unsigned char>(text[1]) < 0x80 ? 2 : 1;
}

std::string cut(std::string text, std::size_t limit) {
  if (characterCount(text) <= limit) return text;
  std::string shortened(firstCharacters(text, limit - kCut.size()));
  shortened += kCut;
  return shortened;
}

void clean(std::string& name) { name = agentName(name); }
void clean(std::optional<std::string>& name) {
  if (name) clean(*name);
}

void clean(TrackedProcess& process) {
  clean(process.name);
  clean(process.path);
  process.commandLine = agentCommandLine(process.commandLine);
  clean(process.cwd);
  clean(process.agentName);
  clean(process.framework);
  clean(process.project);
  clean(process.recordedAgentName);
}

void clean(std::vector<LeftBehind>& list) {
  for (LeftBehind& left : list) {
    clean(left.process);
    clean(left.origin);
  }
}

}  // namespace

std::string visibleText(std::string_view text) {
  std::string visible;
  visible.reserve(text.size());
  while (!text.empty()) {
    if (text.front() == '\x1B') {
      text.remove_prefix(escapeLength(text));
      continue;
    }
    const std::size_t length = scalarLength(text);
    const std::uint32_t scalar = scalarValue(text);
    if (length == 0) {
      visible += kReplacement;
    } else if (isControl(scalar)) {
      visible += ' ';
    } else if (!isInvisible(scalar)) {
      visible += text.substr(0, length);
    }
    text.remove_prefix(std::max<std::size_t>(1, length));
  }
  return visible;
}

std::string agentName(std::string_view name) { return cut(visibleText(name), kAgentNameLimit); }

std::string agentCommandLine(std::string_view commandLine) {
  return cut(redactNote(visibleText(commandLine)), kAgentCommandLineLimit);
}

void cleanForAgents(HostSnapshot& snapshot) {
  for (TrackedProcess& process : snapshot.processes) clean(process);
  for (AgentSession& session : snapshot.sessions) {
    clean(session.agent);
    clean(session.project);
    clean(session.cwd);
    for (SessionChild& child : session.children) {
      clean(child.name);
      child.commandLine = agentCommandLine(child.commandLine);
    }
  }
  clean(snapshot.leftBehind);
  clean(snapshot.likely);
  for (auto& [pid, reason] : snapshot.protections) clean(reason);
}

}  // namespace brindle
