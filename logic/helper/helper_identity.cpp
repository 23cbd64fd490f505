#include "logic/helper/helper_identity.h"

#include <array>
#include <cstddef>

namespace brindle::HelperIdentity {
namespace {

constexpr std::size_t kObjectPathLength = 1 + appBundleID.size() + std::string_view("/helper").size();

constexpr auto kObjectPathBytes = [] {
  std::array<char, kObjectPathLength + 1> path{};
  std::size_t at = 0;
  path[at++] = '/';
  for (const char c : appBundleID) path[at++] = c == '.' ? '/' : c;
  for (const char c : std::string_view("/helper")) path[at++] = c;
  return path;
}();
static_assert(kObjectPathBytes.back() == '\0');

}  // namespace

constexpr std::string_view appRequirement = "anchor apple generic and identifier \"" BRINDLE_APP_ID
                                            "\" and certificate leaf[subject.OU] = \"" BRINDLE_TEAM_ID "\"";

constexpr std::string_view helperRequirement = "anchor apple generic and identifier \"" BRINDLE_APP_ID
                                               ".helper"
                                               "\" and certificate leaf[subject.OU] = \"" BRINDLE_TEAM_ID "\"";

constexpr std::string_view kObjectPath{kObjectPathBytes.data(), kObjectPathLength};

}  // namespace brindle::HelperIdentity
