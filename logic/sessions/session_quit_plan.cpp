#include "logic/sessions/session_quit_plan.h"

#include <algorithm>
#include <iterator>
#include <unordered_set>

namespace brindle {

std::vector<QuitMember> SessionQuitPlan::includedMembers() const {
  std::vector<QuitMember> included;
  std::copy_if(members.begin(), members.end(), std::back_inserter(included),
               [](const QuitMember& member) { return member.included; });
  return included;
}

std::vector<std::uint16_t> SessionQuitPlan::portsFreed() const {
  std::vector<std::uint16_t> ports;
  std::unordered_set<std::uint16_t> seen;
  for (const QuitMember& member : members) {
    if (!member.included) continue;
    std::copy_if(member.ports.begin(), member.ports.end(), std::back_inserter(ports),
                 [&](std::uint16_t port) { return seen.insert(port).second; });
  }
  return ports;
}

std::vector<std::int32_t> SessionQuitPlan::signalTargets() const {
  std::vector<std::int32_t> targets;
  for (const QuitMember& member : members) {
    if (member.included && (member.pid == rootPID || member.detached)) targets.push_back(member.pid);
  }
  return targets;
}

}  // namespace brindle
