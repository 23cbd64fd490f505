// The TCP sockets of one process, and those of the whole machine.
//
// Used by the macOS process source. The kernel tells who holds a socket only of one's own processes. Blocks for less
// than a millisecond; any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "inventory/tcp_sockets.h"

namespace brindle {

/// The listening and established sockets that the process holds; `inode` is the kernel's opaque handle of a socket, the
/// same in all its holders. None when its descriptors may not be read.
[[nodiscard]] std::optional<std::vector<TcpSocket>> socketsOf(std::int32_t pid);

/// The port of each listening socket, whoever holds it, at most kSocketLimit. Empty when the kernel's list cannot be
/// read.
[[nodiscard]] std::vector<int> listenerPorts();

}  // namespace brindle
