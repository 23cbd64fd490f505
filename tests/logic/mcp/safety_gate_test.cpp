#include "logic/mcp/safety_gate.h"

#include <gtest/gtest.h>

namespace brindle {
namespace {

using SafetyGate::decide;
using SafetyGate::Input;

const MCPSafetyVerdict kAskForProcess{"askFirst", "Brindle will ask you in the app before it stops anything.", "node"};
const MCPSafetyVerdict kAskForSession{
    "askFirst", "This is a live agent session. Brindle will ask you before quitting it and everything it started.",
    "node"};

Input found() { return {.found = true, .name = "node"}; }

TEST(SafetyGate, AsksBeforeAnOrdinaryProcess) { EXPECT_EQ(decide(found()), kAskForProcess); }

TEST(SafetyGate, NamesNothingWhenNothingMatchesWhateverElseIsSet) {
  const Input all{.found = false,
                  .name = "node",
                  .system = true,
                  .otherUser = true,
                  .brindle = true,
                  .protectedReason = "Protected by your rule",
                  .isSession = true};
  EXPECT_EQ(decide(all), (MCPSafetyVerdict{"leaveAlone", "Nothing of yours matches.", std::nullopt}));
}

TEST(SafetyGate, TakesTheFirstReasonThatHolds) {
  Input all{.found = true,
            .name = "node",
            .system = true,
            .otherUser = true,
            .brindle = true,
            .protectedReason = "Protected by your rule"};
  EXPECT_EQ(decide(all), (MCPSafetyVerdict{"leaveAlone", "Owned by another user.", "node"}));
  all.otherUser = false;
  EXPECT_EQ(decide(all), (MCPSafetyVerdict{"leaveAlone", "System process. Brindle leaves it alone.", "node"}));
  all.system = false;
  EXPECT_EQ(decide(all), (MCPSafetyVerdict{"leaveAlone", "Brindle itself.", "node"}));
  all.brindle = false;
  EXPECT_EQ(decide(all), (MCPSafetyVerdict{"leaveAlone", "Protected by your rule. Brindle will not stop it.", "node"}));
  all.protectedReason = std::nullopt;
  EXPECT_EQ(decide(all), kAskForProcess);
}

TEST(SafetyGate, NamesTheOwnerOfAnotherUsersSystemProcess) {
  EXPECT_EQ(decide({.found = true, .system = true, .otherUser = true}).reason, "Owned by another user.");
}

TEST(SafetyGate, AsksBeforeALiveSession) {
  Input session = found();
  session.isSession = true;
  EXPECT_EQ(decide(session), kAskForSession);
}

TEST(SafetyGate, AsksBeforeASessionThatOnlyTheProtectionOfAgentsCovers) {
  Input session = found();
  session.isSession = true;
  for (const char* reason : {"AI agents", "Protected by default: AI agents", "x AI agents y"}) {
    session.protectedReason = reason;
    EXPECT_EQ(decide(session), kAskForSession) << reason;
  }
}

TEST(SafetyGate, LeavesASessionAloneForAnyOtherReason) {
  Input session = found();
  session.isSession = true;
  for (const std::string reason : {"Protected by your rule", "AI agent", "ai agents", ""}) {
    session.protectedReason = reason;
    EXPECT_EQ(decide(session), (MCPSafetyVerdict{"leaveAlone", reason + ". Brindle will not stop it.", "node"}));
  }
}

TEST(SafetyGate, NeverAsksBeforeAProtectedTargetThatIsNoSession) {
  Input target = found();
  for (const std::string reason : {"AI agents", "Protected by default: AI agents", "Your terminal shell", ""}) {
    target.protectedReason = reason;
    EXPECT_EQ(decide(target), (MCPSafetyVerdict{"leaveAlone", reason + ". Brindle will not stop it.", "node"}));
  }
}

TEST(SafetyGate, LeavesSystemProcessesAndItselfAloneEvenAsSessions) {
  EXPECT_EQ(decide({.found = true, .system = true, .isSession = true}).verdict, SafetyGate::kLeaveAlone);
  EXPECT_EQ(decide({.found = true, .otherUser = true, .isSession = true}).verdict, SafetyGate::kLeaveAlone);
  EXPECT_EQ(decide({.found = true, .brindle = true, .isSession = true}).verdict, SafetyGate::kLeaveAlone);
}

TEST(SafetyGate, CopiesAnAbsentName) { EXPECT_EQ(decide({.found = true}).name, std::nullopt); }

}  // namespace
}  // namespace brindle
