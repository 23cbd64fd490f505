#include "logic/sessions/session_quit_planner.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <unordered_set>

#include "logic/sessions/process_forest.h"
#include "logic/sessions/protection_text.h"
#include "logic/sessions/tracked_process.h"

namespace brindle::SessionQuitPlanner {
namespace {

using Index = ProcessForest::Index;

constexpr auto kShells = std::to_array<std::string_view>({"bash", "zsh", "fish", "sh", "dash", "tcsh"});

/// A login shell's name begins with "-".
bool isShell(std::string_view name) {
  if (name.starts_with('-')) name.remove_prefix(1);
  return std::find(kShells.begin(), kShells.end(), name) != kShells.end();
}

/// The members' positions among the candidates, in the order of the walk.
std::vector<Index> walk(std::int32_t rootPID, const std::vector<QuitCandidate>& candidates) {
  std::vector<ProcessForest::Link> links;
  links.reserve(candidates.size());
  for (const QuitCandidate& candidate : candidates) links.push_back({.pid = candidate.pid, .ppid = candidate.ppid});
  const ProcessForest forest(links);
  const auto root = forest.find(rootPID);
  if (!root) return {};

  constexpr std::uint32_t kVisited = 1;
  std::vector<std::uint32_t> seen(candidates.size(), 0);
  std::vector<Index> order;
  const auto visit = [&](Index index) {
    seen[index] = kVisited;
    order.push_back(index);
    forest.appendDescendants(index, kVisited, seen, order);
  };
  visit(*root);
  for (Index index = 0; index < candidates.size(); ++index) {
    if (candidates[index].recordedSessionPID == rootPID && seen[index] != kVisited && forest.exists(index)) {
      visit(index);
    }
  }
  return order;
}

QuitMember memberOf(const QuitCandidate& candidate, std::optional<std::string> reason) {
  const bool included = !reason.has_value();
  return {.pid = candidate.pid,
          .name = candidate.name,
          .commandLine = candidate.commandLine,
          .footprint = candidate.footprint,
          .ports = candidate.ports,
          .included = included,
          .skipReason = std::move(reason)};
}

}  // namespace

std::optional<std::string> skipReason(const QuitCandidate& candidate, std::uint32_t currentUser,
                                      const SystemProcessRules& rules) {
  const TrackedProcess process{.pid = candidate.pid, .name = candidate.name, .path = candidate.path};
  if (isSystemProcess(process, rules)) return std::string(ProtectionText::kSystemProcess);
  if (candidate.uid != currentUser) return std::string(ProtectionText::kOtherUser);
  if (candidate.brindle) return std::string(ProtectionText::kBrindle);
  if (candidate.frontmost) return std::string(ProtectionText::kFrontmost);
  if (candidate.hasControllingTTY && isShell(candidate.name)) return std::string(ProtectionText::kTerminalShell);
  if (candidate.defaultProtection) {
    return std::string(ProtectionText::kDefaultPrefix).append(*candidate.defaultProtection);
  }
  if (candidate.userProtected) return std::string(ProtectionText::kUserRule);
  return std::nullopt;
}

SessionQuitPlan plan(const Request& request, const std::vector<QuitCandidate>& candidates, std::uint32_t currentUser,
                     const SystemProcessRules& rules) {
  const std::vector<Index> order = walk(request.rootPID, candidates);
  std::unordered_set<std::int32_t> memberPids;
  memberPids.reserve(order.size());
  for (const Index index : order) memberPids.insert(candidates[index].pid);

  SessionQuitPlan plan{.rootPID = request.rootPID, .agent = request.agent};
  plan.members.reserve(order.size());
  for (const Index index : order) {
    const QuitCandidate& candidate = candidates[index];
    QuitMember& member = plan.members.emplace_back(memberOf(candidate, skipReason(candidate, currentUser, rules)));
    // A process that is its own parent hangs under no other member.
    const bool underMember = candidate.ppid != candidate.pid && memberPids.contains(candidate.ppid);
    member.detached = member.included && candidate.pid != request.rootPID && !underMember;
  }
  return plan;
}

}  // namespace brindle::SessionQuitPlanner
