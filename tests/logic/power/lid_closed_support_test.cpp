#include "logic/power/lid_closed_support.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace brindle {
namespace {

TEST(LidClosedSupport, NeedsALidFirst) {
  for (const bool onPower : {false, true}) {
    for (const bool hasDisplay : {false, true}) {
      EXPECT_EQ(evaluateLidClosedSupport({.hasLid = false, .onPower = onPower, .hasDisplay = hasDisplay}),
                LidClosedSupport::noLid);
    }
  }
}

TEST(LidClosedSupport, NeedsBothPowerAndADisplay) {
  const auto evaluate = [](bool onPower, bool hasDisplay) {
    return evaluateLidClosedSupport({.hasLid = true, .onPower = onPower, .hasDisplay = hasDisplay});
  };
  EXPECT_EQ(evaluate(true, true), LidClosedSupport::works);
  EXPECT_EQ(evaluate(true, false), LidClosedSupport::needsDisplay);
  EXPECT_EQ(evaluate(false, true), LidClosedSupport::needsPower);
  EXPECT_EQ(evaluate(false, false), LidClosedSupport::needsPowerAndDisplay);
}

TEST(LidClosedSupport, HasASentenceForEachCase) {
  std::vector<std::string> texts;
  for (const auto& row : allCases<LidClosedSupport>()) {
    EXPECT_EQ(enumFrom<LidClosedSupport>(row.text), row.value);
    texts.emplace_back(text(row.value));
  }
  EXPECT_EQ(
      texts,
      (std::vector<std::string>{
          "Works now: on power with an external display.", "Needs power. On battery a closed lid sleeps the Mac.",
          "Needs an external display. Without one a closed lid sleeps the Mac.",
          "Needs power and an external display. Otherwise a closed lid sleeps the Mac.", "This Mac has no lid."}));
  EXPECT_EQ(text(static_cast<LidClosedSupport>(9)), "");
}

}  // namespace
}  // namespace brindle
