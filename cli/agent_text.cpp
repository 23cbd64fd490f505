#include "cli/agent_text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

#include "base/text.h"
#include "logic/mcp/note_redaction.h"

namespace brindle {
namespace {

constexpr std::string_view kReplacement = "\uFFFD";
constexpr std::string_view kCut = "...";

struct Range {
  std::uint32_t first;
  std::uint32_t last;
};
// Characters that show nothing and change how the rest is read: soft hyphen, zero-width and directional marks,
// embeddings, overrides and isolates, word joiner and invisible operators, variation selectors, byte-order mark,
// interlinear annotation, tags and their supplement.
constexpr auto kInvisible = std::to_array<Range>({{0xAD, 0xAD},
                                                  {0x61C, 0x61C},
                                                  {0x180E, 0x180E},
                                                  {0x200B, 0x200F},
                                                  {0x202A, 0x202E},
                                                  {0x2060, 0x206F},
                                                  {0xFE00, 0xFE0F},
                                                  {0xFEFF, 0xFEFF},
                                                  {0xFFF9, 0xFFFB},
                                                  {0xE0000, 0xE01EF}});

bool isInvisible(std::uint32_t scalar) {
  return std::any_of(kInvisible.begin(), kInvisible.end(),
                     [&](const Range& range) { return scalar >= range.first && scalar <= range.last; });
}

// C0, DEL, C1, and the two separators that break lines.
bool isControl(std::uint32_t scalar) {
  return scalar < 0x20 || (scalar >= 0x7F && scalar < 0xA0) || scalar == 0x2028 || scalar == 0x2029;
}

struct Scalar {
  std::uint32_t value;
  std::size_t length;
};

// The scalar at the front; none when the bytes there are not UTF-8.
std::optional<Scalar> scalarAt(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text.front());
  if (lead < 0x80) return Scalar{lead, 1};
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (text.size() < length || !isValidUtf8(text.substr(0, length))) return std::nullopt;
  std::uint32_t value = lead & (0xFFu >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) value = value << 6 | (static_cast<unsigned char>(text[i]) & 0x3Fu);
  return Scalar{value, length};
}

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
    const std::optional<Scalar> scalar = scalarAt(text);
    if (!scalar) {
      visible += kReplacement;
      text.remove_prefix(1);
      continue;
    }
    if (isControl(scalar->value)) {
      visible += ' ';
    } else if (!isInvisible(scalar->value)) {
      visible += text.substr(0, scalar->length);
    }
    text.remove_prefix(scalar->length);
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
