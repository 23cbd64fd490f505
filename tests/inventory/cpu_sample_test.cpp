#include "inventory/cpu_sample.h"

#include <gtest/gtest.h>

#include <cmath>

namespace brindle {
namespace {

std::optional<double> percentAfter(Seconds span, double spent, std::string laterBoot = "b") {
  std::vector<ProcessFacts> processes{{.pid = 10, .startTime = 5, .cpuSeconds = 2}};
  const CpuSample before = cpuSampleOf(processes, "b", Seconds{100});
  processes[0].cpuSeconds = 2 + spent;
  applyCpuSamples(before, cpuSampleOf(processes, std::move(laterBoot), Seconds{100} + span), processes);
  return processes[0].cpuPercent;
}

TEST(CpuSample, IsTheShareOfOneCoreBetweenTwoLooks) {
  EXPECT_EQ(percentAfter(Seconds{2}, 1), 50);
  EXPECT_EQ(percentAfter(Seconds{2}, 6), 300);
  EXPECT_EQ(percentAfter(Seconds{2}, 0), 0);
}

TEST(CpuSample, SpansOutsideTheBoundsGiveNoFigure) {
  EXPECT_EQ(percentAfter(Seconds{0.49}, 1), std::nullopt);
  EXPECT_TRUE(percentAfter(kShortestSample, 1));
  EXPECT_TRUE(percentAfter(kLongestSample, 1));
  EXPECT_EQ(percentAfter(kLongestSample + Seconds{1}, 1), std::nullopt);
  EXPECT_EQ(percentAfter(Seconds{-5}, 1), std::nullopt);
  EXPECT_EQ(percentAfter(Seconds{NAN}, 1), std::nullopt);
}

TEST(CpuSample, AnotherBootGivesNoFigure) { EXPECT_EQ(percentAfter(Seconds{2}, 1, "c"), std::nullopt); }

TEST(CpuSample, TimeThatWentBackCountsAsNone) { EXPECT_EQ(percentAfter(Seconds{2}, -1), 0); }

TEST(CpuSample, AReusedPidGivesNoFigure) {
  const std::vector<ProcessFacts> earlier{{.pid = 10, .startTime = 5, .cpuSeconds = 2}};
  std::vector<ProcessFacts> later{{.pid = 10, .startTime = 6, .cpuSeconds = 3}};
  applyCpuSamples(cpuSampleOf(earlier, "b", Seconds{1}), cpuSampleOf(later, "b", Seconds{3}), later);
  EXPECT_EQ(later[0].cpuPercent, std::nullopt);
}

TEST(CpuSample, ItsTextReadsBack) {
  const std::vector<ProcessFacts> processes{{.pid = 10, .startTime = 5, .cpuSeconds = 2.25},
                                            {.pid = 9, .startTime = 1}};
  const CpuSample sample = cpuSampleOf(processes, "b00t", Seconds{100.5});
  EXPECT_EQ(cpuSampleFrom(cpuSampleText(sample)), sample);
}

TEST(CpuSample, DamagedTextIsReadAsFarAsItGoes) {
  EXPECT_EQ(cpuSampleFrom(""), CpuSample{});
  EXPECT_EQ(cpuSampleFrom("brindle-cpu-2 b 1\n1 2 3\n"), CpuSample{});
  EXPECT_EQ(cpuSampleFrom("brindle-cpu-1 b x\n1 2 3\n"), CpuSample{});
  EXPECT_EQ(cpuSampleFrom("brindle-cpu-1 b 1\n1 2 3\nx\n0 2 3\n4 5\n99999999999 1 1\n6 7 8\n").seconds.size(), 2U);
  const std::string whole = cpuSampleText(cpuSampleOf(std::vector<ProcessFacts>{{.pid = 10}}, "b", Seconds{1}));
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_LE(cpuSampleFrom(whole.substr(0, length)).seconds.size(), 1U);
  }
}

TEST(CpuSample, KeepsTheStatedNumberOfProcesses) {
  std::vector<ProcessFacts> processes(kCpuSampleLimit + 1);
  for (std::size_t each = 0; each < processes.size(); ++each) processes[each].pid = static_cast<std::int32_t>(each + 1);
  EXPECT_EQ(cpuSampleOf(processes, "b", Seconds{1}).seconds.size(), kCpuSampleLimit);
}

}  // namespace
}  // namespace brindle
