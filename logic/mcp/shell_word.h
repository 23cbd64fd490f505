// A path or argument as one word of a shell command line.
//
// Used by the registration snippets and by the hooks that are written into settings. Pure.
#pragma once

#include <string>
#include <string_view>

namespace brindle {

/// `text` as it is when it is not empty and holds only ASCII letters, digits and "/._-+:%@"; otherwise in single
/// quotes, each single quote inside as '\''. Shells read it back exactly, unless it holds a NUL.
[[nodiscard]] std::string shellWord(std::string_view text);

}  // namespace brindle
