// Outside bytes as text that every document and terminal can carry.
//
// Used where process names, paths and command lines become records. Pure.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace brindle {

/// Whether a character shows nothing and changes how the rest is read: it hides text, joins it or turns its direction.
[[nodiscard]] bool isInvisible(std::uint32_t scalar);

/// Whether it is a C0 or C1 control, DEL, or one of the two separators that break lines.
[[nodiscard]] bool isControl(std::uint32_t scalar);

/// `text` with each byte that belongs to no well-formed UTF-8 sequence replaced by U+FFFD.
[[nodiscard]] std::string validText(std::string_view text);

/// One line that cannot steer a terminal: control characters become blanks, so that escape sequences lose their escape,
/// invisible characters are left out, invalid bytes are U+FFFD.
[[nodiscard]] std::string terminalText(std::string_view text);

}  // namespace brindle
