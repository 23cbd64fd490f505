// What the user has said must not be stopped: names, paths or ports.
//
// Kept in the settings under the key "protect"; read by the protections.
#pragma once

#include <string>
#include <vector>

#include "base/json_value.h"
#include "logic/sessions/tracked_process.h"

namespace brindle {

struct ProtectionRules {
  /// Whole process names.
  std::vector<std::string> names;
  /// Files, and folders with everything below them; compared with executable and working directory.
  std::vector<std::string> paths;
  std::vector<int> ports;

  bool operator==(const ProtectionRules&) const = default;
};

/// Rules of one kind that are taken; later ones are left out.
inline constexpr std::size_t kProtectionRuleLimit = 256;

/// The rules in a settings document: {"protect": {"names": […], "paths": […], "ports": […]}}. Whatever is missing or
/// of another type counts as absent; so do empty texts and numbers that are no port.
[[nodiscard]] ProtectionRules protectionRulesFrom(const JsonValue& settings);

/// Whether one of the rules covers the process.
[[nodiscard]] bool isProtectedBy(const ProtectionRules& rules, const TrackedProcess& process);

}  // namespace brindle
