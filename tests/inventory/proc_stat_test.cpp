#include "inventory/proc_stat.h"

#include <gtest/gtest.h>

namespace brindle {
namespace {

// Written by Linux 6.18.
constexpr std::string_view kNumbers =
    " S 4010 4101 4010 34816 4101 4194304 9110 0 3 0 250 75 0 0 20 0 11 0 123456 22654976 1280 18446744073709551615 1 "
    "1 0 0 0 0 0 0 0 0 0 0 17 1 0 0 0 0 0 0 0 0 0 0 0 0 0\n";

std::string statOf(std::string_view name) { return "4101 (" + std::string(name) + ")" + std::string(kNumbers); }

TEST(ProcStat, ReadsTheKernelsLine) {
  const auto stat = parseProcStat(statOf("node"));
  ASSERT_TRUE(stat);
  EXPECT_EQ(*stat, (ProcStat{.pid = 4101,
                             .name = "node",
                             .state = 'S',
                             .ppid = 4010,
                             .group = 4101,
                             .session = 4010,
                             .terminal = 34816,
                             .kernelThread = false,
                             .cpuTicks = 325,
                             .startTicks = 123456}));
}

TEST(ProcStat, TakesAnyNameUpToTheLastParenthesis) {
  for (const char* name : {"a b", ") S 1 1 1", "((", "a\nb", "\xff\xfe", "", "x) R 5"}) {
    const auto stat = parseProcStat(statOf(name));
    ASSERT_TRUE(stat) << name;
    EXPECT_EQ(stat->name, name);
    EXPECT_EQ(stat->ppid, 4010);
    EXPECT_EQ(stat->startTicks, 123456);
  }
}

TEST(ProcStat, KnowsKernelThreads) {
  const auto stat = parseProcStat("2 (kthreadd) S 0 0 0 0 -1 2129984 0 0 0 0 0 0 0 0 20 0 1 0 26 0 0\n");
  ASSERT_TRUE(stat);
  EXPECT_TRUE(stat->kernelThread);
}

TEST(ProcStat, NoPrefixThatEndsBeforeTheStartStampIsALine) {
  const std::string whole = statOf("node");
  const std::size_t stamp = whole.find("123456");
  ASSERT_NE(stamp, std::string::npos);
  for (std::size_t length = 0; length <= stamp; ++length) {
    EXPECT_EQ(parseProcStat(whole.substr(0, length)), std::nullopt) << length;
  }
  EXPECT_TRUE(parseProcStat(whole.substr(0, stamp + 6)));
}

TEST(ProcStat, NumbersThatDoNotFitAreRefused) {
  const auto with = [](std::string_view ppid, std::string_view user) {
    return "41 (a) S " + std::string(ppid) + " 1 1 0 1 0 0 0 0 0 " + std::string(user) + " 1 0 0 20 0 1 0 99 0\n";
  };
  EXPECT_TRUE(parseProcStat(with("2147483647", "18446744073709551614")));
  EXPECT_EQ(parseProcStat(with("2147483648", "1")), std::nullopt);
  EXPECT_EQ(parseProcStat(with("1", "18446744073709551615")), std::nullopt);
  EXPECT_EQ(parseProcStat(with("-1", "1")), std::nullopt);
  EXPECT_EQ(parseProcStat(with("x", "1")), std::nullopt);
}

TEST(ProcStat, PidsBelowOneAreRefused) {
  EXPECT_EQ(parseProcStat("0 (a)" + std::string(kNumbers)), std::nullopt);
  EXPECT_EQ(parseProcStat("-4 (a)" + std::string(kNumbers)), std::nullopt);
  EXPECT_TRUE(parseProcStat("1 (a)" + std::string(kNumbers)));
}

TEST(ProcStat, ChangedBytesNeverDoHarm) {
  const std::string whole = statOf("node");
  std::size_t read = 0;
  for (std::size_t at = 0; at < whole.size(); ++at) {
    for (const char byte : {'\0', ')', '(', ' ', '-', '\xff'}) {
      std::string changed = whole;
      changed[at] = byte;
      read += parseProcStat(changed).has_value() ? 1U : 0U;
    }
  }
  EXPECT_GT(read, 0U);
}

}  // namespace
}  // namespace brindle
