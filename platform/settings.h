// The person's settings as a document; absent keys have their defaults with whoever reads them.
#pragma once

#include <cstddef>
#include <string>

#include "base/json_value.h"

namespace brindle {

/// A settings file above this size is not read.
inline constexpr std::size_t kSettingsByteLimit = std::size_t{1} << 20;

struct Settings {
  /// Empty when there is no file, or none that could be read.
  JsonObject document;
  /// One line when there is a file that could not be read or holds no JSON object; else empty.
  std::string problem;
};

/// Reads the file, through a link where it is one: people keep their settings elsewhere.
[[nodiscard]] Settings readSettings(const std::string& path);

}  // namespace brindle
