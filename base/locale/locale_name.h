// From the names of locales in a POSIX environment to those of the language data.
//
// Used by whoever reads LANG and its kin. Pure.
#pragma once

#include <string>
#include <string_view>

namespace brindle {

/// "de_DE" of "de_DE.UTF-8@euro"; "en_US_POSIX" of "C", "POSIX", "C.UTF-8", an empty name, or one with characters
/// other than ASCII letters, digits, "_" and "-".
[[nodiscard]] std::string localeName(std::string_view posixName);

}  // namespace brindle
