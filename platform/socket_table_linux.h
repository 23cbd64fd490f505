// The TCP sockets of this machine from the kernel's socket interface, or from /proc/net where that is refused.
//
// Used by the Linux process source. Blocks for less than a millisecond on ordinary machines.
#pragma once

#include <vector>

#include "base/result.h"
#include "inventory/tcp_sockets.h"
#include "platform/proc_folder_linux.h"

namespace brindle {

/// Listening and, when asked for, established sockets of IPv4 and IPv6, at most kSocketLimit of each. Empty when
/// neither way is open.
[[nodiscard]] std::vector<TcpSocket> tcpSockets(const ProcFolder& proc, bool withEstablished);

/// The two ways by themselves; the first fails with errno when the interface is refused.
[[nodiscard]] Result<std::vector<TcpSocket>> tcpSocketsByNetlink(bool withEstablished);
[[nodiscard]] std::vector<TcpSocket> tcpSocketsByText(const ProcFolder& proc, bool withEstablished);

}  // namespace brindle
