// Cleans what other programs choose (names, command lines, folders) before an agent reads it as an answer.
//
// Used by the host of `brindle mcp`, on its copy of a snapshot; the documents built from it stay exact. What an agent
// reads may steer it, so nothing invisible passes: no control character, no escape sequence, no bidirectional control,
// no tag character. Pure.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "inventory/host_snapshot.h"

namespace brindle {

/// The most user-perceived characters of a command line that are passed on, the "..." that marks a cut one included.
inline constexpr std::size_t kAgentCommandLineLimit = 500;
/// The same for a name, a project or a folder.
inline constexpr std::size_t kAgentNameLimit = 200;

/// `text` in one line without anything invisible: escape sequences and invisible controls go, other control characters
/// become a space, bytes that are not UTF-8 become U+FFFD.
[[nodiscard]] std::string visibleText(std::string_view text);

/// A name as an agent may read it.
[[nodiscard]] std::string agentName(std::string_view name);

/// A command line as an agent may read it, secrets in its arguments replaced.
[[nodiscard]] std::string agentCommandLine(std::string_view commandLine);

/// Cleans every text of the snapshot that another program chose.
void cleanForAgents(HostSnapshot& snapshot);

}  // namespace brindle
