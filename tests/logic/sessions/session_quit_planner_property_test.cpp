#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <map>
#include <set>

#include "logic/sessions/session_quit_planner.h"
#include "tests/logic/sessions/process_generators.h"

namespace brindle {
namespace {

/// Candidates with pids that occur once, parents that may form cycles, and every kind of protection.
rc::Gen<std::vector<QuitCandidate>> candidateLists() {
  return rc::gen::exec([] {
    std::vector<QuitCandidate> candidates;
    std::set<std::int32_t> used;
    for (const std::int32_t pid : *rc::gen::container<std::vector<std::int32_t>>(crowdedPids())) {
      if (!used.insert(pid).second) continue;
      QuitCandidate made{
          .pid = pid,
          .ppid = *rc::gen::inRange(0, 4) == 0 ? 1 : *crowdedPids(),
          .uid = *rc::gen::element(kUser, kUser, kUser, kOtherUser),
          .name = *rc::gen::element<std::string>("node", "-zsh", "bash", "Dock"),
          .path = *rc::gen::element<std::string>("/opt/x", "/opt/y", "/bin/sh", ""),
          .ports = *rc::gen::container<std::vector<std::uint16_t>>(rc::gen::inRange<std::uint16_t>(1, 5)),
          .hasControllingTTY = *rc::gen::arbitrary<bool>()};
      if (*rc::gen::inRange(0, 3) == 0) made.recordedSessionPID = *crowdedPids();
      made.userProtected = *rc::gen::inRange(0, 8) == 0;
      made.brindle = *rc::gen::inRange(0, 8) == 0;
      made.frontmost = *rc::gen::inRange(0, 8) == 0;
      if (*rc::gen::inRange(0, 8) == 0) made.defaultProtection = "Databases";
      candidates.push_back(made);
    }
    return candidates;
  });
}

struct Case {
  std::vector<QuitCandidate> candidates;
  SessionQuitPlan plan;
  std::map<std::int32_t, QuitCandidate> byPid;
};

Case arbitraryCase() {
  Case made{.candidates = *candidateLists()};
  const bool hit = !made.candidates.empty() && *rc::gen::inRange(0, 5) != 0;
  const std::int32_t root = hit ? (*rc::gen::elementOf(made.candidates)).pid : *crowdedPids();
  made.plan = SessionQuitPlanner::plan({.rootPID = root, .agent = "Codex"}, made.candidates, kUser);
  for (const QuitCandidate& candidate : made.candidates) made.byPid.emplace(candidate.pid, candidate);
  return made;
}

RC_GTEST_PROP(SessionQuitPlanner, NeverIncludesWhatMustBeLeftAlone, ()) {
  const Case made = arbitraryCase();
  for (const QuitMember& member : made.plan.members) {
    RC_ASSERT(member.included == !member.skipReason.has_value());
    if (!member.included) continue;
    const QuitCandidate& candidate = made.byPid.at(member.pid);
    RC_ASSERT(candidate.pid >= 100 && candidate.uid == kUser && candidate.name != "Dock");
    RC_ASSERT(!candidate.path.starts_with("/bin/"));
    RC_ASSERT(!candidate.brindle && !candidate.frontmost && !candidate.userProtected && !candidate.defaultProtection);
    RC_ASSERT(!(candidate.hasControllingTTY && (candidate.name == "-zsh" || candidate.name == "bash")));
  }
}

RC_GTEST_PROP(SessionQuitPlanner, ListsExactlyWhatHangsUnderTheRootOrIsRecordedOnce, ()) {
  const Case made = arbitraryCase();
  std::set<std::int32_t> expected;
  if (made.byPid.contains(made.plan.rootPID)) {
    expected.insert(made.plan.rootPID);
    for (const QuitCandidate& candidate : made.candidates) {
      if (candidate.recordedSessionPID == made.plan.rootPID) expected.insert(candidate.pid);
    }
    for (std::size_t before = 0; before != expected.size();) {
      before = expected.size();
      for (const QuitCandidate& candidate : made.candidates) {
        if (expected.contains(candidate.ppid)) expected.insert(candidate.pid);
      }
    }
  }
  std::set<std::int32_t> listed;
  for (const QuitMember& member : made.plan.members) RC_ASSERT(listed.insert(member.pid).second);
  RC_CLASSIFY(listed.size() > 1, "with members");
  RC_ASSERT(listed == expected);
  RC_ASSERT((made.plan.members.empty() || made.plan.members.front().pid == made.plan.rootPID));
}

RC_GTEST_PROP(SessionQuitPlanner, ReachesEveryIncludedMemberFromASignalTargetOrASkippedOne, ()) {
  const Case made = arbitraryCase();
  std::set<std::int32_t> members;
  for (const QuitMember& member : made.plan.members) members.insert(member.pid);
  std::set<std::int32_t> targets;
  for (const std::int32_t target : made.plan.signalTargets()) RC_ASSERT(targets.insert(target).second);
  for (const QuitMember& member : made.plan.members) {
    const std::int32_t ppid = made.byPid.at(member.pid).ppid;
    const bool underAnother = ppid != member.pid && members.contains(ppid);
    const bool target = member.included && (member.pid == made.plan.rootPID || !underAnother);
    RC_ASSERT(targets.contains(member.pid) == target);
  }
}

RC_GTEST_PROP(SessionQuitPlanner, FreesEachPortOfAnIncludedMemberOnce, ()) {
  const Case made = arbitraryCase();
  std::set<std::uint16_t> expected;
  for (const QuitMember& member : made.plan.includedMembers())
    expected.insert(member.ports.begin(), member.ports.end());
  const auto freed = made.plan.portsFreed();
  RC_ASSERT(std::set<std::uint16_t>(freed.begin(), freed.end()) == expected);
  RC_ASSERT(freed.size() == expected.size());
}

}  // namespace
}  // namespace brindle
