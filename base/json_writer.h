// Turns a JsonValue into text, byte for byte as the platform's own encoder writes it.
#pragma once

#include <string>

#include "base/json_value.h"

namespace brindle {

struct JsonStyle {
  /// Line breaks, two spaces a level, `"key" : value`; empty containers are an opened and a closed line with a
  /// blank line between.
  bool pretty = false;
  /// Members by the bytes of their keys instead of in their order.
  bool sortedKeys = false;
  /// "/" as "\/".
  bool escapeSlashes = true;
};

/// The text of `value`; no line end after it.
[[nodiscard]] std::string writeJson(const JsonValue& value, JsonStyle style = {});

/// The text of a string literal alone, quotes included.
[[nodiscard]] std::string writeJsonString(std::string_view text, JsonStyle style = {});

}  // namespace brindle
