// Outside bytes as text that every document and terminal can carry.
//
// Used where process names, paths and command lines become records. Pure.
#pragma once

#include <string>
#include <string_view>

namespace brindle {

/// `text` with each byte that belongs to no well-formed UTF-8 sequence replaced by U+FFFD.
[[nodiscard]] std::string validText(std::string_view text);

/// One line that cannot steer a terminal: control characters become blanks, escape sequences lose their escape,
/// characters that change the direction or are invisible (U+061C, U+200B to U+200F, U+2028 to U+202E, U+2060 to
/// U+2069, U+FEFF) are left out, invalid bytes are U+FFFD.
[[nodiscard]] std::string terminalText(std::string_view text);

}  // namespace brindle
