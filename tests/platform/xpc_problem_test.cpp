#include "platform/xpc_problem.h"

#include <gtest/gtest.h>

#include "logic/helper/helper_identity.h"

namespace brindle {
namespace {

HelperProblem problemOf(long code, bool ownSignatureFits = true) {
  return problemOfXpcError({.code = code, .description = "the system's words", .ownSignatureFits = ownSignatureFits});
}

TEST(XpcProblem, AnInvalidConnectionMeansThatNothingIsInstalled) {
  const auto problem = problemOf(4099);
  EXPECT_EQ(problem.kind, HelperProblemKind::notInstalled);
  EXPECT_NE(problem.text.find(HelperIdentity::machServiceName), std::string::npos);
  EXPECT_NE(problem.text.find(HelperIdentity::plistName), std::string::npos);
}

TEST(XpcProblem, AnInvalidConnectionMeansTheSameForAnUnsignedProgram) {
  EXPECT_EQ(problemOf(4099, false), problemOf(4099, true));
}

TEST(XpcProblem, AHelperThatFailsTheRequirementIsARefusal) {
  const auto problem = problemOf(4102);
  EXPECT_EQ(problem.kind, HelperProblemKind::refused);
  EXPECT_EQ(problem.text, "the helper is not signed by team " + std::string(HelperIdentity::teamID));
}

TEST(XpcProblem, AnInterruptionIsARefusalWhenOurOwnSignatureDoesNotFit) {
  const auto problem = problemOf(4097, false);
  EXPECT_EQ(problem.kind, HelperProblemKind::refused);
  EXPECT_NE(problem.text.find("codesign --identifier " + std::string(HelperIdentity::appBundleID)), std::string::npos);
}

TEST(XpcProblem, AnInterruptionMayPassWhenOurOwnSignatureFits) {
  EXPECT_EQ(problemOf(4097, true),
            (HelperProblem{HelperProblemKind::unreachable, "the helper ended before it answered"}));
}

TEST(XpcProblem, AnUnreadableAnswerMayPass) {
  EXPECT_EQ(problemOf(4101), (HelperProblem{HelperProblemKind::unreachable, "the helper's answer cannot be read"}));
}

TEST(XpcProblem, AnyOtherCodeMayPassAndKeepsTheSystemsWords) {
  for (const long code : {0L, -1L, 4096L, 4098L, 4100L, 4103L}) {
    EXPECT_EQ(problemOf(code), (HelperProblem{HelperProblemKind::unreachable, "the system's words"})) << code;
  }
}

TEST(XpcProblem, ACodeWithoutWordsIsNamedByItsNumber) {
  EXPECT_EQ(problemOfXpcError({.code = -7}), (HelperProblem{HelperProblemKind::unreachable, "error -7"}));
}

TEST(XpcProblem, EveryTextIsOneLine) {
  for (const long code : {4097L, 4099L, 4101L, 4102L, 5L}) {
    for (const bool fits : {false, true}) {
      const auto text = problemOf(code, fits).text;
      EXPECT_FALSE(text.empty());
      EXPECT_EQ(text.find('\n'), std::string::npos) << text;
      EXPECT_NE(text.back(), '.') << text;
    }
  }
}

}  // namespace
}  // namespace brindle
