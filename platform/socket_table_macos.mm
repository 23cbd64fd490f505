#include "platform/socket_table_macos.h"

#include <libproc.h>
#include <netinet/in.h>
#include <netinet/in_pcb.h>
#include <netinet/tcp_fsm.h>
#include <netinet/tcp_var.h>
#include <sys/proc_info.h>
#include <sys/socketvar.h>
#include <sys/sysctl.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>

namespace brindle {
namespace {

/// Descriptors looked at in one process; a process with more is a server with that many clients, and its listening
/// sockets are among its first.
constexpr std::size_t kDescriptorLimit = 4096;

bool isLoopback(const in_sockinfo& socket) {
  if ((socket.insi_vflag & INI_IPV4) != 0) {
    return (ntohl(socket.insi_laddr.ina_46.i46a_addr4.s_addr) >> 24) == IN_LOOPBACKNET;
  }
  const in6_addr& address = socket.insi_laddr.ina_6;
  if (IN6_IS_ADDR_LOOPBACK(&address)) return true;
  return IN6_IS_ADDR_V4MAPPED(&address) && address.s6_addr[12] == IN_LOOPBACKNET;
}

std::optional<TcpSocket> socketOf(std::int32_t pid, std::int32_t descriptor) {
  socket_fdinfo info = {};
  const int size = static_cast<int>(sizeof info);
  if (proc_pidfdinfo(pid, descriptor, PROC_PIDFDSOCKETINFO, &info, size) < size) return std::nullopt;
  if (info.psi.soi_kind != SOCKINFO_TCP) return std::nullopt;
  const tcp_sockinfo& tcp = info.psi.soi_proto.pri_tcp;
  if (tcp.tcpsi_state != TSI_S_LISTEN && tcp.tcpsi_state != TSI_S_ESTABLISHED) return std::nullopt;
  return TcpSocket{.state = tcp.tcpsi_state == TSI_S_LISTEN ? TcpState::listening : TcpState::established,
                   .port = ntohs(static_cast<std::uint16_t>(tcp.tcpsi_ini.insi_lport)),
                   .loopback = isLoopback(tcp.tcpsi_ini),
                   .inode = info.psi.soi_so};
}

/// The kernel's list of TCP sockets: a head, one record a socket, and a tail like the head, each with its length in its
/// first four bytes. Empty when it cannot be read.
std::string socketList() {
  constexpr const char* kName = "net.inet.tcp.pcblist64";
  std::size_t bytes = 0;
  if (sysctlbyname(kName, nullptr, &bytes, nullptr, 0) != 0) return {};
  std::string list(bytes, '\0');
  if (sysctlbyname(kName, list.data(), &bytes, nullptr, 0) != 0) return {};
  list.resize(std::min(bytes, list.size()));
  return list;
}

}  // namespace

std::optional<std::vector<TcpSocket>> socketsOf(std::int32_t pid) {
  std::vector<proc_fdinfo> descriptors(kDescriptorLimit);
  const int room = static_cast<int>(descriptors.size() * sizeof(proc_fdinfo));
  const int bytes = proc_pidinfo(pid, PROC_PIDLISTFDS, 0, descriptors.data(), room);
  if (bytes <= 0) return std::nullopt;
  descriptors.resize(static_cast<std::size_t>(bytes) / sizeof(proc_fdinfo));
  std::vector<TcpSocket> sockets;
  for (const proc_fdinfo& each : descriptors) {
    if (each.proc_fdtype != PROX_FDTYPE_SOCKET) continue;
    if (const auto socket = socketOf(pid, each.proc_fd)) sockets.push_back(*socket);
  }
  return sockets;
}

std::vector<int> listenerPorts() {
  std::vector<int> ports;
  const std::string list = socketList();
  std::size_t at = 0;
  for (std::uint32_t length = 0; at + sizeof length <= list.size(); at += length) {
    std::memcpy(&length, list.data() + at, sizeof length);
    if (length < sizeof length || length > list.size() - at) break;
    if (length < sizeof(xtcpcb64)) {
      if (at > 0) break;  // the tail
      continue;
    }
    xtcpcb64 socket = {};
    std::memcpy(&socket, list.data() + at, sizeof socket);
    if (socket.t_state == TCPS_LISTEN && ports.size() < kSocketLimit) {
      ports.push_back(ntohs(socket.xt_inpcb.inp_lport));
    }
  }
  return ports;
}

}  // namespace brindle
