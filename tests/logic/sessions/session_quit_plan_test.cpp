#include "logic/sessions/session_quit_plan.h"

#include <gmock/gmock.h>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

QuitMember included(std::int32_t pid, std::vector<std::uint16_t> ports = {}) {
  return {.pid = pid, .ports = std::move(ports), .included = true};
}

QuitMember skipped(std::int32_t pid, std::vector<std::uint16_t> ports = {}) {
  return {.pid = pid, .ports = std::move(ports), .skipReason = "System process"};
}

TEST(SessionQuitPlan, KeepsMemberOrderInItsIncludedMembers) {
  const SessionQuitPlan plan{.rootPID = 500, .members = {included(500), skipped(510), included(505)}};
  EXPECT_THAT(plan.includedMembers(), ElementsAre(plan.members[0], plan.members[2]));
}

TEST(SessionQuitPlan, FreesPortsOfTwoMembersOnceInMemberOrder) {
  const SessionQuitPlan plan{.rootPID = 500,
                             .members = {included(500, {5173, 3000}), included(510, {80, 3000}), included(520, {80})}};
  EXPECT_THAT(plan.portsFreed(), ElementsAre(5173, 3000, 80));
}

TEST(SessionQuitPlan, FreesNoPortsOfSkippedMembers) {
  const SessionQuitPlan plan{.rootPID = 500, .members = {skipped(500, {3000}), included(510, {80})}};
  EXPECT_THAT(plan.portsFreed(), ElementsAre(80));
}

TEST(SessionQuitPlan, SignalsTheRootAndDetachedMembersAlone) {
  SessionQuitPlan plan{.rootPID = 500, .members = {included(500), included(510), included(520)}};
  plan.members[2].detached = true;
  EXPECT_THAT(plan.signalTargets(), ElementsAre(500, 520));
}

TEST(SessionQuitPlan, DoesNotSignalASkippedRoot) {
  const SessionQuitPlan plan{.rootPID = 500, .members = {skipped(500), included(510)}};
  EXPECT_THAT(plan.signalTargets(), IsEmpty());
}

}  // namespace
}  // namespace brindle
