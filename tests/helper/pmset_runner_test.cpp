// Every case runs a real child process: the stand-in beside this file, under a name that says what it does.
#include "helper/pmset_runner.h"

#include <gmock/gmock.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

#include "tests/helper/helper_fakes.h"

namespace brindle {
namespace {

using ::testing::ElementsAre;

struct PmsetRunnerTest : ::testing::Test {
  PmsetRunnerTest() {
    std::string pattern = ::testing::TempDir() + "pmset-XXXXXX";
    folder = mkdtemp(pattern.data());
  }
  ~PmsetRunnerTest() override { std::filesystem::remove_all(folder); }
  /// A path under which the stand-in behaves as `name` says.
  std::string standIn(const std::string& name) {
    std::filesystem::create_symlink(BRINDLE_PMSET_STAND_IN, folder / name);
    return folder / name;
  }

  std::filesystem::path folder;
  RecordingLog log;
};
using PmsetRunnerRun = PmsetRunnerTest;

TEST_F(PmsetRunnerRun, SucceedsWithStatusZeroAndLogsTheCommandLine) {
  const auto path = standIn("works");
  PmsetRunner runner(log, path);
  EXPECT_TRUE(runner.run(PmsetCommand::disableSleep, std::nullopt));
  EXPECT_TRUE(runner.run(PmsetCommand::restoreSleep, RevertReason::helperStart));
  EXPECT_THAT(log.lines, ElementsAre(path + " -a disablesleep 1 exit 0 reason request",
                                     path + " -a disablesleep 0 exit 0 reason helperStart"));
}

TEST_F(PmsetRunnerRun, FailsWithAnyOtherStatus) {
  const auto path = standIn("fails");
  PmsetRunner runner(log, path);
  EXPECT_FALSE(runner.run(PmsetCommand::restoreSleep, RevertReason::connectionLost));
  EXPECT_THAT(log.lines, ElementsAre(path + " -a disablesleep 0 exit 3 reason connectionLost"));
}

TEST_F(PmsetRunnerRun, FailsWhenASignalKillsTheChild) {
  const auto path = standIn("killed");
  PmsetRunner runner(log, path);
  EXPECT_FALSE(runner.run(PmsetCommand::disableSleep, std::nullopt));
  EXPECT_THAT(log.lines, ElementsAre(path + " -a disablesleep 1 exit 9 reason request"));
}

TEST_F(PmsetRunnerRun, ReportsAToolThatIsNotThereAsAnError) {
  PmsetRunner runner(log, folder / "absent");
  EXPECT_FALSE(runner.run(PmsetCommand::disableSleep, std::nullopt));
  EXPECT_THAT(log.lines, ElementsAre("error: pmset failed to start: No such file or directory"));
}

TEST_F(PmsetRunnerRun, ReportsAToolThatCannotBeExecutedAsAnError) {
  std::ofstream(folder / "text") << "not a program";
  PmsetRunner runner(log, folder / "text");
  EXPECT_FALSE(runner.run(PmsetCommand::disableSleep, std::nullopt));
  EXPECT_THAT(log.lines, ElementsAre("error: pmset failed to start: Permission denied"));
}

TEST_F(PmsetRunnerRun, BlocksUntilTheChildHasEnded) {
  const auto path = standIn("waits");
  ASSERT_EQ(mkfifo((path + ".fifo").c_str(), 0600), 0);
  PmsetRunner runner(log, path);
  std::atomic<bool> returned = false;
  bool succeeded = false;
  std::thread thread([&] {
    succeeded = runner.run(PmsetCommand::disableSleep, std::nullopt);
    returned = true;
  });
  {
    const std::ofstream writer(path + ".fifo");  // opens only once the child is reading
    EXPECT_FALSE(returned);
  }
  thread.join();
  EXPECT_TRUE(succeeded);
}

TEST_F(PmsetRunnerRun, HandsTheChildNothingButItsArguments) {
  const auto path = standIn("reports");
  ASSERT_EQ(setenv("BRINDLE_MUST_NOT_LEAK", "1", 1), 0);
  // As in the daemon, which has taken SIGTERM into its own hands.
  const auto before = std::signal(SIGTERM, SIG_IGN);
  sigset_t set, old;
  sigemptyset(&set);
  sigaddset(&set, SIGUSR1);
  sigaddset(&set, SIGTERM);
  ASSERT_EQ(pthread_sigmask(SIG_BLOCK, &set, &old), 0);
  PmsetRunner runner(log, path);
  const bool succeeded = runner.run(PmsetCommand::disableSleep, std::nullopt);
  pthread_sigmask(SIG_SETMASK, &old, nullptr);
  (void)std::signal(SIGTERM, before);
  ASSERT_TRUE(succeeded);

  std::ostringstream report;
  report << std::ifstream(path + ".report").rdbuf();
  EXPECT_EQ(report.str(), "argument -a\nargument disablesleep\nargument 1\n");
}

TEST(PmsetRunnerCommandLine, IsTheSystemToolByDefault) {
  RecordingLog log;
  const PmsetRunner runner(log);
  for (const auto& [command, text] : allCases<PmsetCommand>()) {
    EXPECT_EQ(runner.commandLine(command), pmsetCommandLine(command)) << text;
  }
  EXPECT_EQ(runner.commandLine(PmsetCommand::restoreSleep), "/usr/bin/pmset -a disablesleep 0");
  EXPECT_EQ(runner.name(), "pmset");
}

}  // namespace
}  // namespace brindle
