// Reading and writing streams that the process was given: pipes, terminals, sockets and files that others opened.
//
// Used for the standard streams. Whoever shares one may have set it not to block, and that is theirs to decide: what
// would block then waits here. A signal with a handler does not end the waiting. Owns no descriptor.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include "base/result.h"

namespace brindle {

struct Stream {
  int descriptor = -1;
  /// As failures call it: "standard output".
  std::string_view name;
};

inline constexpr Stream kStandardInput{0, "standard input"};
inline constexpr Stream kStandardOutput{1, "standard output"};
inline constexpr Stream kStandardError{2, "standard error"};

/// Waits until there is something and puts it into `buffer`, which is not empty: its length, 0 at the end.
[[nodiscard]] Result<std::size_t> readSome(Stream stream, std::span<char> buffer);

/// All of `bytes`, or why not: EPIPE when nobody reads any more, in a process that ignores SIGPIPE.
Outcome writeAll(Stream stream, std::string_view bytes);

}  // namespace brindle
