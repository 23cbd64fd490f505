// TOML documents of others, parsed within bounds.
//
// Used for manifests of projects and settings of agents. The library's errors are values here. Pure.
#pragma once

#define TOML_EXCEPTIONS 0
#define TOML_HEADER_ONLY 1
#include <toml++/toml.h>

#include <optional>
#include <string>
#include <string_view>

namespace brindle {

/// Brackets nested deeper than such documents ever are; the library's parser recurses into them.
inline constexpr int kTomlDepthLimit = 64;

/// None for what is not valid TOML, and for brackets beyond kTomlDepthLimit. Its texts are read by tomlText alone: they
/// stand in it in a form of their own.
[[nodiscard]] std::optional<toml::table> parseToml(std::string_view text);

/// The text that the node of such a table holds; none for a node of another kind, and for none. Characters from U+F0080
/// to U+FFFFF, which are for private use, come back as others.
[[nodiscard]] std::optional<std::string> tomlText(const toml::node* node);

}  // namespace brindle
