// What a process started by an agent is, guessed from its texts, ports and framework.
//
// Used by session building and by the choice of idle candidates. Pure; safe on any thread.
#pragma once

#include "base/enum_text.h"

namespace brindle {

struct TrackedProcess;

/// The raw values are the JSON values wherever a kind is written.
enum class SessionChildKind { mcp, devServer, testRunner, browser, other };

template <>
inline constexpr auto kEnumTexts<SessionChildKind> = std::to_array<EnumText<SessionChildKind>>({
    {SessionChildKind::mcp, "mcp"},
    {SessionChildKind::devServer, "devServer"},
    {SessionChildKind::testRunner, "testRunner"},
    {SessionChildKind::browser, "browser"},
    {SessionChildKind::other, "other"},
});

/// The kind of `process`, first match wins: an MCP word in command line, path or name (so that an MCP server that
/// listens on a port is never taken for a dev server); a listening port or a framework; a test runner's word; a
/// browser's word; other. Words are plain substrings in any letter case, without word boundaries; the three texts
/// are searched as one, joined by single blanks, an absent path being empty.
[[nodiscard]] SessionChildKind classifyChild(const TrackedProcess& process);

}  // namespace brindle
