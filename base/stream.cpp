#include "base/stream.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>

namespace brindle {
namespace {

/// After a call that failed with `code`: whether to make it again, having waited where it would have blocked.
bool mayGoOn(int descriptor, short event, int code) {
  if (code == EINTR) return true;
  if (code != EAGAIN && code != EWOULDBLOCK) return false;
  struct pollfd wanted = {.fd = descriptor, .events = event, .revents = 0};
  return ::poll(&wanted, 1, -1) >= 0 || errno == EINTR;
}

}  // namespace

Result<std::size_t> readSome(Stream stream, std::span<char> buffer) {
  for (;;) {
    const ssize_t count = ::read(stream.descriptor, buffer.data(), buffer.size());
    if (count >= 0) return static_cast<std::size_t>(count);
    const int code = errno;
    if (!mayGoOn(stream.descriptor, POLLIN, code)) return fail(code, "read " + std::string(stream.name));
  }
}

Outcome writeAll(Stream stream, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(stream.descriptor, bytes.data(), bytes.size());
    if (count >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(count));
      continue;
    }
    const int code = errno;
    if (!mayGoOn(stream.descriptor, POLLOUT, code)) return fail(code, "write " + std::string(stream.name));
  }
  return {};
}

}  // namespace brindle
