// TOML documents of others, parsed within bounds.
//
// Used for manifests of projects and settings of agents. The library's parser recurses into brackets, so what nests
// deeper than such documents ever do is refused before it. Its errors are values here. Pure.
#pragma once

#define TOML_EXCEPTIONS 0
#define TOML_HEADER_ONLY 1
#include <toml++/toml.h>

#include <optional>
#include <string_view>

namespace brindle {

/// None for what is not valid TOML, and for brackets deeper than this.
inline constexpr int kTomlDepthLimit = 64;
[[nodiscard]] std::optional<toml::table> parseToml(std::string_view text);

}  // namespace brindle
