// Takes secrets out of the notes that agents attach to their requests, before anything is stored.
//
// Used by the quit tool and by the host's cleaning of command lines. Pure.
#pragma once

#include <string>
#include <string_view>

namespace brindle {

/// What stands in a secret's place: three bullets, U+2022.
inline constexpr std::string_view kRedacted = "\u2022\u2022\u2022";

/// From this many bytes on, a word of nothing but token characters is taken for a token.
inline constexpr std::size_t kTokenLength = 32;

/// `note` word by word, words being what stands between single spaces (U+0020 alone), so that runs of spaces stay:
/// the value of an option named like a secret ("--token=x", "-PASSWORD x") and every word of at least kTokenLength
/// ASCII letters, digits, "+", "/", "=", "_" and "-" that does not begin with "-" become kRedacted.
[[nodiscard]] std::string redactNote(std::string_view note);

}  // namespace brindle
