// An account whose plan is watched.
//
// Kept by the application beside its samples; the member names are the JSON keys.
#pragma once

#include <optional>
#include <string>

#include "base/json_value.h"

namespace brindle {

struct PlanAccount {
  std::string id;
  std::string name;

  bool operator==(const PlanAccount&) const = default;
};

/// Both members, in the order of the record.
[[nodiscard]] JsonObject encode(const PlanAccount& account);

/// None when a member is missing or no string.
[[nodiscard]] std::optional<PlanAccount> decodePlanAccount(const JsonObject& object);

}  // namespace brindle
