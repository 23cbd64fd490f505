#include "inventory/protection_rules.h"

#include <algorithm>

#include "base/json_record.h"

namespace brindle {
namespace {

constexpr std::int64_t kHighestPort = 65535;

std::vector<std::string> textsIn(const JsonObject& object, std::string_view key) {
  std::vector<std::string> texts;
  const JsonArray* array = arrayMember(object, key);
  if (array == nullptr) return texts;
  for (const JsonValue& each : *array) {
    if (texts.size() == kProtectionRuleLimit) break;
    if (each.string() != nullptr && !each.string()->empty()) texts.push_back(*each.string());
  }
  return texts;
}

bool isWithin(const std::optional<std::string>& path, std::string_view rule) {
  while (rule.size() > 1 && rule.ends_with('/')) rule.remove_suffix(1);
  if (!path || !path->starts_with(rule)) return false;
  return path->size() == rule.size() || rule == "/" || (*path)[rule.size()] == '/';
}

}  // namespace

ProtectionRules protectionRulesFrom(const JsonValue& settings) {
  const JsonObject* document = settings.object();
  const JsonObject* rules = document == nullptr ? nullptr : objectMember(*document, "protect");
  if (rules == nullptr) return {};
  ProtectionRules found{textsIn(*rules, "names"), textsIn(*rules, "paths"), {}};
  if (const JsonArray* ports = arrayMember(*rules, "ports")) {
    for (const JsonValue& each : *ports) {
      if (found.ports.size() == kProtectionRuleLimit) break;
      const auto port = each.number() == nullptr ? std::nullopt : each.number()->integer();
      if (port && *port >= 1 && *port <= kHighestPort) found.ports.push_back(static_cast<int>(*port));
    }
  }
  return found;
}

bool isProtectedBy(const ProtectionRules& rules, const TrackedProcess& process) {
  if (std::ranges::find(rules.names, process.name) != rules.names.end()) return true;
  const auto covers = [&](const std::string& rule) {
    return isWithin(process.path, rule) || isWithin(process.cwd, rule);
  };
  if (std::ranges::any_of(rules.paths, covers)) return true;
  return std::ranges::any_of(process.ports,
                             [&](int port) { return std::ranges::find(rules.ports, port) != rules.ports.end(); });
}

}  // namespace brindle
