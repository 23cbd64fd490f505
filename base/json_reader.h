// Reads JSON text from outside into a JsonValue; total: any bytes give a value or none, never an exception.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "base/json_value.h"

namespace brindle {

/// The deepest nesting of arrays and objects that a document may have; a document one deeper is refused.
inline constexpr std::size_t kJsonDepthLimit = 512;
/// The largest document that is looked at, in bytes.
inline constexpr std::size_t kJsonByteLimit = std::size_t{16} << 20;
/// The most values, keys not counted, that a document may hold.
inline constexpr std::size_t kJsonNodeLimit = std::size_t{1} << 20;

/// The document, or none when `text` is not exactly one JSON value. Refused: trailing bytes other than white
/// space, trailing commas, comments, invalid UTF-8, lone surrogate escapes, numbers beyond the grammar, and
/// documents over one of the limits. Accepted: a leading UTF-8 byte-order mark. Of duplicate keys the last wins.
[[nodiscard]] std::optional<JsonValue> parseJson(std::string_view text);

}  // namespace brindle
