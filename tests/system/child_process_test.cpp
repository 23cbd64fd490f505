// The system's shell as the child; what the helper's own runner needs is tested beside it.
#include "system/child_process.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <stdlib.h>
#include <unistd.h>

#include <cerrno>

#include "base/descriptor.h"

namespace brindle {
namespace {

/// How `script` ends; it decides about its exit status.
ChildEnd endOf(ChildSpec spec, const std::string& script) {
  spec.program = spec.program.empty() ? "/bin/sh" : spec.program;
  spec.arguments = {"-c", script};
  const auto child = ChildProcess::start(spec);
  EXPECT_TRUE(child);
  return child ? child->wait().value_or(ChildEnd{.exitStatus = -1}) : ChildEnd{.exitStatus = -2};
}

TEST(ChildProcessWait, TellsExitStatusAndSignalApart) {
  EXPECT_EQ(endOf({}, "exit 0"), ChildEnd{});
  EXPECT_TRUE(endOf({}, "exit 0").succeeded());
  EXPECT_EQ(endOf({}, "exit 9"), ChildEnd{.exitStatus = 9});
  EXPECT_EQ(endOf({}, "kill -KILL $$"), ChildEnd{.killedBy = SIGKILL});
  EXPECT_FALSE(endOf({}, "kill -KILL $$").succeeded());
}

TEST(ChildProcessWait, FailsForAChildThatWasReaped) {
  const auto child = ChildProcess::start({.program = "/bin/sh", .arguments = {"-c", "exit 0"}});
  ASSERT_TRUE(child);
  ASSERT_TRUE(child->wait());
  EXPECT_EQ(child->wait().error().code, ECHILD);
}

TEST(ChildProcessStart, FailsWithTheSystemsCode) {
  EXPECT_EQ(ChildProcess::start({.program = "/nonexistent/program"}).error().code, ENOENT);
  EXPECT_EQ(ChildProcess::start({.program = "/dev/null"}).error().code, EACCES);
  EXPECT_EQ(ChildProcess::start({.program = "/nonexistent/program"}).error().doing, "start /nonexistent/program");
}

TEST(ChildProcessStart, SearchesThePathOnlyWhenTold) {
  EXPECT_EQ(endOf({.program = "sh", .searchesPath = true}, "exit 4"), ChildEnd{.exitStatus = 4});
  EXPECT_EQ(ChildProcess::start({.program = "sh"}).error().code, ENOENT);
}

TEST(ChildProcessEnvironment, IsTheCallersOwnUnlessGiven) {
  ASSERT_EQ(setenv("BRINDLE_CHILD_TEST", "here", 1), 0);
  const std::string script = R"(test "$BRINDLE_CHILD_TEST" = here)";
  EXPECT_TRUE(endOf({}, script).succeeded());
  EXPECT_FALSE(endOf({.environment = std::vector<std::string>{}}, script).succeeded());
  EXPECT_TRUE(endOf({.environment = std::vector<std::string>{"BRINDLE_CHILD_TEST=here"}}, script).succeeded());
}

TEST(ChildProcessStreams, AreTheNullDeviceOnlyWhenTold) {
  const std::string script = "test /proc/self/fd/0 -ef /dev/null && test /proc/self/fd/1 -ef /dev/null";
  EXPECT_TRUE(endOf({.nullStreams = true}, script).succeeded());
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const Descriptor reading(ends[0]), writing(ends[1]);
  const Descriptor before(dup(STDIN_FILENO));
  ASSERT_EQ(dup2(reading.get(), STDIN_FILENO), STDIN_FILENO);
  EXPECT_TRUE(endOf({}, "test -p /proc/self/fd/0").succeeded()) << "otherwise the caller's own";
  ASSERT_EQ(dup2(before.get(), STDIN_FILENO), STDIN_FILENO);
}

TEST(ChildProcessSignals, KeepTheGivenMask) {
  sigset_t blocked;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGUSR1);
  sigset_t none, before;
  sigemptyset(&none);
  ASSERT_EQ(pthread_sigmask(SIG_BLOCK, &blocked, &before), 0);
  // A blocked signal that a shell sends to itself stays pending, and it comes to its own exit.
  const std::string script = "kill -USR1 $$; exit 5";
  EXPECT_EQ(endOf({}, script), ChildEnd{.exitStatus = 5});
  EXPECT_EQ(endOf({.mask = none}, script), ChildEnd{.killedBy = SIGUSR1});
  EXPECT_EQ(endOf({.defaultSignals = true}, script), ChildEnd{.killedBy = SIGUSR1});
  ASSERT_EQ(pthread_sigmask(SIG_SETMASK, &before, nullptr), 0);
}

TEST(ChildProcessSignals, StayIgnoredUnlessTheyAreToBeDefault) {
  const auto before = std::signal(SIGUSR2, SIG_IGN);
  const std::string script = "kill -USR2 $$; exit 5";
  EXPECT_EQ(endOf({}, script), ChildEnd{.exitStatus = 5});
  EXPECT_EQ(endOf({.defaultSignals = true}, script), ChildEnd{.killedBy = SIGUSR2});
  (void)std::signal(SIGUSR2, before);
}

}  // namespace
}  // namespace brindle
