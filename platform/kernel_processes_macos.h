// What the macOS kernel tells about processes, as facts.
//
// Used by the macOS process source and process handles. Of other users' processes only the kernel's own table and the
// path can be read.
#pragma once

#include <sys/sysctl.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "inventory/process_facts.h"
#include "inventory/tcp_sockets.h"

namespace brindle {

/// The kernel's table of all processes; empty when it is refused.
[[nodiscard]] std::vector<kinfo_proc> kernelProcesses();
/// The entry of one process; none when there is none.
[[nodiscard]] std::optional<kinfo_proc> kernelProcess(std::int32_t pid);

[[nodiscard]] bool hasEnded(const kinfo_proc& entry);
/// Microseconds since 1970.
[[nodiscard]] std::int64_t startStampOf(const kinfo_proc& entry);

/// Pid, parent, user, name, start, terminal, and whether it was adopted.
[[nodiscard]] ProcessFacts factsOf(const kinfo_proc& entry);
/// Adds path, arguments and named variables.
void readProgram(ProcessFacts& facts);
/// Adds working directory, footprint and CPU time.
void readDetails(ProcessFacts& facts);
/// The listening and established TCP sockets of one of the user's own processes; the kernel's address of a socket
/// stands as its inode, the same in every process that shares it.
[[nodiscard]] std::vector<TcpSocket> socketsOf(std::int32_t pid);

}  // namespace brindle
