#include "inventory/tcp_sockets.h"

#include <algorithm>
#include <optional>

#include "base/number_text.h"

namespace brindle {
namespace {

std::string_view takeField(std::string_view& line) {
  line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
  const std::size_t end = std::min(line.find(' '), line.size());
  const std::string_view field = line.substr(0, end);
  line.remove_prefix(end);
  return field;
}

std::optional<bool> isLoopback(std::string_view address) {
  if (address.find_first_not_of("0123456789ABCDEFabcdef") != std::string_view::npos) return std::nullopt;
  if (address.size() == 8) return address.ends_with("7F");
  if (address.size() != 32) return std::nullopt;
  // Words of the address are written in the machine's byte order: ::1, and 127.x mapped as ::ffff:127.x.
  if (address == "00000000000000000000000001000000") return true;
  return address.starts_with("0000000000000000FFFF0000") && address.ends_with("7F");
}

std::optional<TcpSocket> socketFrom(std::string_view line) {
  takeField(line);  // number of the line
  const std::string_view local = takeField(line);
  takeField(line);  // remote end
  const std::string_view state = takeField(line);
  for (int each = 0; each < 3; ++each) takeField(line);  // queues, timer, retransmissions
  const auto uid = wholeFromText<std::uint32_t>(takeField(line));
  takeField(line);  // timeout
  const auto inode = wholeFromText<std::uint64_t>(takeField(line));
  const std::size_t colon = local.find(':');
  if (colon == std::string_view::npos || !uid || !inode) return std::nullopt;
  const auto port = wholeFromText<std::uint16_t>(local.substr(colon + 1), 16);
  const auto loopback = isLoopback(local.substr(0, colon));
  if (!port || !loopback || (state != "0A" && state != "01")) return std::nullopt;
  return TcpSocket{state == "0A" ? TcpState::listening : TcpState::established, *port, *loopback, *uid, *inode};
}

}  // namespace

std::vector<TcpSocket> parseTcpTable(std::string_view text) {
  std::vector<TcpSocket> sockets;
  while (!text.empty() && sockets.size() < kSocketLimit) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    if (const auto socket = socketFrom(text.substr(0, end))) sockets.push_back(*socket);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return sockets;
}

}  // namespace brindle
