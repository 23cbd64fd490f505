#include "inventory/toml_table.h"

#include <utility>

namespace brindle {
namespace {

bool nestsTooDeep(std::string_view text) {
  int depth = 0;
  for (const char each : text) {
    if (each == '[' || each == '{') ++depth;
    if ((each == ']' || each == '}') && depth > 0) --depth;
    if (depth > kTomlDepthLimit) return true;
  }
  return false;
}

}  // namespace

std::optional<toml::table> parseToml(std::string_view text) {
  if (nestsTooDeep(text)) return std::nullopt;
  toml::parse_result document = toml::parse(text);
  if (!document) return std::nullopt;
  return std::move(document).table();
}

}  // namespace brindle
