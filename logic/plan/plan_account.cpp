#include "logic/plan/plan_account.h"

#include <utility>

#include "base/json_record.h"

namespace brindle {

JsonObject encode(const PlanAccount& account) {
  JsonObject object;
  object.append("id", account.id);
  object.append("name", account.name);
  return object;
}

std::optional<PlanAccount> decodePlanAccount(const JsonObject& object) {
  auto id = stringMember(object, "id");
  auto name = stringMember(object, "name");
  if (!id || !name) return std::nullopt;
  return PlanAccount{std::move(*id), std::move(*name)};
}

}  // namespace brindle
