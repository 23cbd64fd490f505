// Whole files: bounded reads, atomic replacement. Never follows a symbolic link at the last component of a store's own
// file; created files have mode 0600, created folders 0700.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "base/result.h"

namespace brindle {

/// The whole file. ENOENT when there is none; EFBIG when it has more than `limit` bytes; ELOOP for a link.
[[nodiscard]] Result<std::string> readFile(const std::string& path, std::size_t limit);

/// Replaces the file in one step: a reader sees the old bytes or the new, never a mixture, and on failure the old
/// file stays whole and no temporary file stays behind. What earlier replacements left that were killed is removed.
Outcome replaceFile(const std::string& path, std::string_view bytes);

/// Creates the folder and its missing parents with mode 0700; success when it is there. Refused with
/// kFileWriteNoPermission when the last component exists but belongs to another user, ENOTDIR when it is no folder.
Outcome ensureFolder(const std::string& path);

/// Removes the file; success also when there is none.
Outcome removeFile(const std::string& path);

/// The size in bytes; none when it cannot be read.
[[nodiscard]] std::optional<std::size_t> fileSize(const std::string& path);

}  // namespace brindle
