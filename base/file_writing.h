// The steps that every writer of a file shares: telling what was opened, writing all of it, naming the failure.
//
// Used inside base/ alone.
#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>

#include "base/descriptor.h"
#include "base/result.h"

namespace brindle {

/// The modes of files and folders that are created.
inline constexpr mode_t kFileMode = 0600;
inline constexpr mode_t kFolderMode = 0700;

/// Reports a write that failed with an errno value: refused access has one code in both editions.
[[nodiscard]] tl::unexpected<Failure> writeFailure(int code, std::string doing);

/// The size of a regular file. EISDIR or EINVAL for anything else: a pipe or device could block for ever.
[[nodiscard]] tl::expected<off_t, int> regularFileSize(const Descriptor& file);

/// Writes all bytes where the descriptor stands; 0, or the errno value at which it stopped.
[[nodiscard]] int writeAll(const Descriptor& file, std::string_view bytes);

}  // namespace brindle
