// One picture of a report that repeats on a terminal.
//
// Used by the watching reports. Pure.
#pragma once

#include <string>
#include <string_view>

namespace brindle {

/// What puts the lines of `text` in the place of the picture before it: each line from the top, cleared behind its end,
/// and then the rest of the screen. Nothing is cleared before it is written again, so nothing flickers.
[[nodiscard]] std::string screenFrame(std::string_view text);

}  // namespace brindle
