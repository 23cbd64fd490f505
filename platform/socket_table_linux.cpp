#include "platform/socket_table_linux.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <linux/inet_diag.h>
#include <linux/netlink.h>
#include <linux/sock_diag.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <optional>

#include "base/descriptor.h"

namespace brindle {
namespace {

struct Request {
  nlmsghdr header;
  inet_diag_req_v2 body;
};

bool isLoopback(const inet_diag_msg& message) {
  std::array<unsigned char, 16> address{};
  std::memcpy(address.data(), message.id.idiag_src, address.size());
  if (message.idiag_family == AF_INET) return address[0] == 127;
  in6_addr six{};
  std::memcpy(&six, address.data(), sizeof six);
  return IN6_IS_ADDR_LOOPBACK(&six) || (IN6_IS_ADDR_V4MAPPED(&six) && address[12] == 127);
}

TcpSocket socketOf(const inet_diag_msg& message) {
  return {message.idiag_state == TCP_LISTEN ? TcpState::listening : TcpState::established,
          ntohs(message.id.idiag_sport), isLoopback(message), message.idiag_uid, message.idiag_inode};
}

Outcome ask(int netlink, unsigned char family, bool withEstablished) {
  Request request{};
  request.header.nlmsg_len = sizeof request;
  request.header.nlmsg_type = SOCK_DIAG_BY_FAMILY;
  request.header.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
  request.body.sdiag_family = family;
  request.body.sdiag_protocol = IPPROTO_TCP;
  request.body.idiag_states = 1U << TCP_LISTEN | (withEstablished ? 1U << TCP_ESTABLISHED : 0U);
  if (::send(netlink, &request, sizeof request, 0) != static_cast<ssize_t>(sizeof request)) {
    return fail(errno, "ask for sockets");
  }
  return {};
}

/// Takes the messages of one datagram; true when the listing is complete.
Result<bool> take(const char* bytes, std::size_t length, std::vector<TcpSocket>& sockets, std::size_t limit) {
  while (length >= sizeof(nlmsghdr)) {
    nlmsghdr header{};
    std::memcpy(&header, bytes, sizeof header);
    if (header.nlmsg_len < sizeof header || header.nlmsg_len > length) break;
    if (header.nlmsg_type == NLMSG_DONE) return true;
    if (header.nlmsg_type == NLMSG_ERROR) {
      nlmsgerr error{};
      if (header.nlmsg_len >= NLMSG_LENGTH(sizeof error)) std::memcpy(&error, bytes + NLMSG_HDRLEN, sizeof error);
      return fail(error.error == 0 ? EPROTO : -error.error, "list sockets");
    }
    if (header.nlmsg_len >= NLMSG_LENGTH(sizeof(inet_diag_msg))) {
      inet_diag_msg message{};
      std::memcpy(&message, bytes + NLMSG_HDRLEN, sizeof message);
      if (sockets.size() < limit) sockets.push_back(socketOf(message));
    }
    const std::size_t step = std::min<std::size_t>(NLMSG_ALIGN(header.nlmsg_len), length);
    bytes += step;
    length -= step;
  }
  return false;
}

Outcome listFamily(unsigned char family, bool withEstablished, std::vector<TcpSocket>& sockets) {
  const std::size_t limit = sockets.size() + kSocketLimit;
  const Descriptor netlink(::socket(AF_NETLINK, SOCK_DGRAM | SOCK_CLOEXEC, NETLINK_SOCK_DIAG));
  if (!netlink) return fail(errno, "open the socket interface");
  if (auto asked = ask(netlink.get(), family, withEstablished); !asked) return asked;
  std::vector<char> bytes(std::size_t{64} << 10);
  for (;;) {
    const ssize_t length = ::recv(netlink.get(), bytes.data(), bytes.size(), 0);
    if (length < 0 && errno == EINTR) continue;
    if (length <= 0) return fail(length == 0 ? EPROTO : errno, "list sockets");
    const auto done = take(bytes.data(), static_cast<std::size_t>(length), sockets, limit);
    if (!done) return tl::make_unexpected(done.error());
    if (*done) return {};
  }
}

}  // namespace

Result<std::vector<TcpSocket>> tcpSocketsByNetlink(bool withEstablished) {
  std::vector<TcpSocket> sockets;
  for (const unsigned char family : {static_cast<unsigned char>(AF_INET), static_cast<unsigned char>(AF_INET6)}) {
    // A kernel without IPv6 refuses the second family only.
    auto listed = listFamily(family, withEstablished, sockets);
    if (!listed && family == AF_INET) return tl::make_unexpected(listed.error());
  }
  return sockets;
}

std::vector<TcpSocket> tcpSocketsByText(const ProcFolder& proc, bool withEstablished) {
  std::vector<TcpSocket> sockets;
  for (const char* name : {"net/tcp", "net/tcp6"}) {
    const Descriptor file(::openat(proc.descriptor(), name, O_RDONLY | O_CLOEXEC));
    if (!file) continue;
    // 150 bytes a line at most; the limit of sockets bounds the text as well.
    std::string text(kSocketLimit * 160, '\0');
    std::size_t length = 0;
    while (length < text.size()) {
      const ssize_t count = ::read(file.get(), text.data() + length, text.size() - length);
      if (count < 0 && errno == EINTR) continue;
      if (count <= 0) break;
      length += static_cast<std::size_t>(count);
    }
    for (const TcpSocket& socket : parseTcpTable(std::string_view(text).substr(0, length))) {
      if (withEstablished || socket.state == TcpState::listening) sockets.push_back(socket);
    }
  }
  return sockets;
}

std::vector<TcpSocket> tcpSockets(const ProcFolder& proc, bool withEstablished) {
  if (auto sockets = tcpSocketsByNetlink(withEstablished)) return std::move(*sockets);
  return tcpSocketsByText(proc, withEstablished);
}

}  // namespace brindle
