// The person's settings as a document; absent keys have their defaults with whoever reads them.
//
// Used by everything that heeds a setting, so that all of them follow a link, refuse a damaged file and name it alike.
#pragma once

#include <cstddef>
#include <string>

#include "base/json_value.h"
#include "platform/environment.h"

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

/// Reads the file that belongs to the environment; as without a file when it tells of none.
[[nodiscard]] Settings settingsOf(const Environment& environment);

}  // namespace brindle
