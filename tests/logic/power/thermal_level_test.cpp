#include "logic/power/thermal_level.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace brindle {
namespace {

TEST(ThermalLevel, RisesWithItsRawValue) {
  EXPECT_LT(ThermalLevel::nominal, ThermalLevel::fair);
  EXPECT_LT(ThermalLevel::fair, ThermalLevel::serious);
  EXPECT_LT(ThermalLevel::serious, ThermalLevel::critical);
}

TEST(ThermalLevel, RoundTripsItsFourRawValues) {
  std::int64_t raw = 0;
  for (const auto& row : allCases<ThermalLevel>()) {
    EXPECT_EQ(rawValue(row.value), raw);
    EXPECT_EQ(thermalLevelFromRaw(raw), row.value);
    EXPECT_EQ(enumFrom<ThermalLevel>(row.text), row.value);
    ++raw;
  }
  EXPECT_EQ(raw, 4);
}

TEST(ThermalLevel, KnowsNoOtherRawValue) {
  for (const std::int64_t raw :
       {std::int64_t{-1}, std::int64_t{4}, std::int64_t{1} << 32, std::numeric_limits<std::int64_t>::min()}) {
    EXPECT_EQ(thermalLevelFromRaw(raw), std::nullopt);
  }
}

TEST(ThermalLevel, HasALabelForEachCase) {
  std::vector<std::string> labels;
  for (const auto& row : allCases<ThermalLevel>()) labels.emplace_back(label(row.value));
  EXPECT_EQ(labels, (std::vector<std::string>{"Cool", "Fair", "Serious", "Critical"}));
  EXPECT_EQ(label(static_cast<ThermalLevel>(9)), "");
}

}  // namespace
}  // namespace brindle
