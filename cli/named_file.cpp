#include "cli/named_file.h"

#include <fcntl.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "base/descriptor.h"
#include "base/stream.h"

namespace brindle {
namespace {

constexpr std::size_t kReadSize = std::size_t{64} << 10;

}  // namespace

Result<std::string> readNamedFile(const std::string& path, std::size_t limit) {
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
  if (!file) return fail(errno, "read " + path);
  std::string text;
  std::array<char, kReadSize> buffer;
  for (;;) {
    const Result<std::size_t> count = readSome({file.get(), path}, buffer);
    if (!count) return tl::make_unexpected(count.error());
    if (*count == 0) return text;
    if (*count > limit - text.size()) return fail(EFBIG, "read " + path);
    text.append(buffer.data(), *count);
  }
}

}  // namespace brindle
