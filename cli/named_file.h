// Files that a person or a settings file names: links are followed and pipes are read, unlike the program's own files,
// which are never read through a link.
//
// Used for what --snapshot names and for agents' settings.
#pragma once

#include <cstddef>
#include <string>

#include "base/result.h"

namespace brindle {

/// The whole of it. ENOENT when there is none, EISDIR for a folder, EFBIG when it has more than `limit` bytes. Waits
/// for the end of a pipe.
[[nodiscard]] Result<std::string> readNamedFile(const std::string& path, std::size_t limit);

}  // namespace brindle
