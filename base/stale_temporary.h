// What a replacement of a file leaves beside it when its process is killed between writing and renaming.
//
// Used by replaceFile, which sweeps at each success what earlier ones have left: nobody else knows the name.
#pragma once

#include <cstddef>
#include <ctime>
#include <string>

namespace brindle {

/// A temporary file is stale from this age on, in seconds; a replacement takes milliseconds.
inline constexpr std::time_t kStaleTemporaryAge = 3600;
/// The entries of the folder that are looked at; a leftover beyond them stays.
inline constexpr std::size_t kSweptEntryLimit = 10'000;

/// A fresh name beside `path`: "PATH.UUID.tmp" with an upper-case UUID.
[[nodiscard]] std::string temporaryPathFor(const std::string& path);

/// Removes the temporary files of `path` whose last change is kStaleTemporaryAge or more before `now`, in seconds since
/// 1970 by the clock of the file system. Only regular files with exactly such a name that belong to this user and have
/// no second name; links are not followed. What cannot be read or removed stays. A replacement that has been stopped
/// for so long fails when it goes on, and leaves the file whole.
void removeStaleTemporaries(const std::string& path, std::time_t now);

}  // namespace brindle
