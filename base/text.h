// Text as people see it: user-perceived characters, lines, white space, case. UTF-8 throughout.
//
// Invalid UTF-8 never fails: each offending byte counts as one character and stays as it is.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace brindle {

/// The number of extended grapheme clusters (UAX #29 of Unicode 15.1).
[[nodiscard]] std::size_t characterCount(std::string_view text);

/// The first `count` user-perceived characters, or the whole text when it has no more.
[[nodiscard]] std::string_view firstCharacters(std::string_view text, std::size_t count);

/// The pieces between newline characters, empty ones left out. A newline character is a user-perceived character
/// whose first scalar is U+000A to U+000D, U+0085, U+2028 or U+2029; "\r\n" is one.
[[nodiscard]] std::vector<std::string_view> newlinePieces(std::string_view text);

/// Without the characters of property White_Space at both ends.
[[nodiscard]] std::string_view trimWhiteSpace(std::string_view text);

/// Full lower-case mapping independent of the locale; U+0130 becomes "i" and U+0307.
[[nodiscard]] std::string lowerCase(std::string_view text);

/// Whether `text` begins with `lowerPrefix`, the ASCII letters of `text` taken as lower case and all others as they
/// are.
[[nodiscard]] bool beginsWithAnyCase(std::string_view text, std::string_view lowerPrefix);

/// The bytes of the well-formed UTF-8 scalar at the start of `text`: 1 to 4, or 0 when there is none.
[[nodiscard]] std::size_t scalarLength(std::string_view text);

/// Whether every byte belongs to well-formed UTF-8 (no surrogates, no overlong forms, at most U+10FFFF).
[[nodiscard]] bool isValidUtf8(std::string_view text);

/// The last component of a path as the platform's own library answers it: "/a/b/" is "b", "/" is "/", "" is "".
[[nodiscard]] std::string lastPathComponent(std::string_view path);

/// `parts` with `separator` between them.
[[nodiscard]] std::string joined(const std::vector<std::string>& parts, std::string_view separator);

}  // namespace brindle
