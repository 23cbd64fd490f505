// The application that the person is using.
//
// Used by the host's snapshot taker, for the protection of that application. Blocks for milliseconds; any thread.
#pragma once

#include <cstdint>
#include <optional>

namespace brindle {

/// The process that owns the window in front. None on Linux, where a desktop tells a program of the command line
/// nothing that holds everywhere; none on macOS without a graphical session, and while nothing shows a window.
[[nodiscard]] std::optional<std::int32_t> frontmostApplication();

}  // namespace brindle
