// TCP sockets of this machine, and the text of /proc/net/tcp and tcp6 that lists them.
//
// Filled in by the process sources over the kernel's socket interface, or from the text where that is refused. Pure.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace brindle {

/// Sockets taken from one listing; what is beyond is left out.
inline constexpr std::size_t kSocketLimit = 65536;

enum class TcpState { listening, established };

struct TcpSocket {
  TcpState state = TcpState::listening;
  /// The local port.
  std::uint16_t port = 0;
  /// Its address is of this machine only (127.0.0.0/8, ::1, or the first mapped into IPv6).
  bool loopback = false;
  std::uint32_t uid = 0;
  /// 0 for a socket that no process holds any more.
  std::uint64_t inode = 0;

  bool operator==(const TcpSocket&) const = default;
};

/// The listening and established sockets of the text in its order; lines that are not the kernel's are passed over.
/// The addresses are 8 or 32 hexadecimal digits in the words of a little-endian machine.
[[nodiscard]] std::vector<TcpSocket> parseTcpTable(std::string_view text);

}  // namespace brindle
