#include "logic/plan/history_policy.h"

#include "base/whole_number.h"

namespace brindle::HistoryPolicy {

std::string label(double hours) {
  if (hours == 1) return "1 Hour";
  if (hours == 168) return "7 Days";
  if (hours == 720) return "30 Days";
  if (hours == 8760) return "1 Year";
  return std::to_string(wholeNumber(hours)) + " Hours";
}

std::int64_t retentionDays(std::optional<std::int64_t> chosen) {
  for (const std::int64_t choice : retentionChoices) {
    if (chosen == choice) return choice;
  }
  return kDefaultRetentionDays;
}

}  // namespace brindle::HistoryPolicy
