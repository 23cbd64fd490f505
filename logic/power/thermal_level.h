// How hot the machine is, in the four steps that operating systems tell.
//
// Read by platform code, compared by the keep-awake policy, stored in the rules as its number. The order of the
// cases is the order of heat, so the built-in comparisons apply.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "base/enum_text.h"

namespace brindle {

enum class ThermalLevel : std::int32_t { nominal = 0, fair = 1, serious = 2, critical = 3 };

template <>
inline constexpr auto kEnumTexts<ThermalLevel> = std::to_array<EnumText<ThermalLevel>>({
    {ThermalLevel::nominal, "nominal"},
    {ThermalLevel::fair, "fair"},
    {ThermalLevel::serious, "serious"},
    {ThermalLevel::critical, "critical"},
});

/// The number that stands for `level` in JSON: 0 to 3.
[[nodiscard]] constexpr std::int64_t rawValue(ThermalLevel level) { return static_cast<std::int64_t>(level); }

/// The level of a number; none for every number but 0 to 3.
[[nodiscard]] constexpr std::optional<ThermalLevel> thermalLevelFromRaw(std::int64_t raw) {
  for (const auto& row : allCases<ThermalLevel>()) {
    if (rawValue(row.value) == raw) return row.value;
  }
  return std::nullopt;
}

/// "Cool", "Fair", "Serious" or "Critical"; empty for a value that is no case. Valid for the life of the process.
[[nodiscard]] std::string_view label(ThermalLevel level);

}  // namespace brindle
