#include "logic/power/thermal_level.h"

namespace brindle {

std::string_view label(ThermalLevel level) {
  switch (level) {
    case ThermalLevel::nominal:
      return "Cool";
    case ThermalLevel::fair:
      return "Fair";
    case ThermalLevel::serious:
      return "Serious";
    case ThermalLevel::critical:
      return "Critical";
  }
  return {};
}

}  // namespace brindle
