#include "platform/process_source.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>

#include "platform/process_handle.h"
#include "platform/process_stopper.h"
#include "platform/socket_table_linux.h"

namespace brindle {
namespace {

/// A child that waits until it is signalled; ended and reaped with the value.
class Child {
 public:
  Child() : Child([] { return true; }) {}
  /// `prepare` runs in the child first.
  template <typename Prepare>
  explicit Child(Prepare&& prepare) {
    int ready[2] = {};
    if (::pipe(ready) != 0) return;
    pid_ = ::fork();
    if (pid_ == 0) {
      if (!prepare()) ::_exit(1);
      (void)!::write(ready[1], "x", 1);
      for (;;) ::pause();
    }
    ::close(ready[1]);
    char byte = 0;
    (void)!::read(ready[0], &byte, 1);
    ::close(ready[0]);
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child() {
    ::kill(pid_, SIGKILL);
    ::waitpid(pid_, nullptr, 0);
  }
  [[nodiscard]] std::int32_t pid() const { return pid_; }

 private:
  pid_t pid_ = -1;
};

class Listener {
 public:
  Listener() : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (::bind(socket_.get(), reinterpret_cast<sockaddr*>(&address), length) != 0) return;
    if (::listen(socket_.get(), 1) != 0) return;
    ::getsockname(socket_.get(), reinterpret_cast<sockaddr*>(&address), &length);
    port_ = ntohs(address.sin_port);
  }
  [[nodiscard]] int port() const { return port_; }

 private:
  Descriptor socket_;
  int port_ = 0;
};

const ProcessFacts* find(const ProcessListing& listing, std::int32_t pid) {
  const auto found = std::ranges::find(listing.processes, pid, &ProcessFacts::pid);
  return found == listing.processes.end() ? nullptr : &*found;
}

TEST(ProcessSource, SeesThisProcessWithEverything) {
  const Listener listener;
  const auto listing = listProcesses({::geteuid(), ListingDetail::everything});
  ASSERT_TRUE(listing);
  const ProcessFacts* self = find(*listing, ::getpid());
  ASSERT_NE(self, nullptr);
  EXPECT_EQ(self->ppid, ::getppid());
  EXPECT_EQ(self->uid, ::geteuid());
  EXPECT_TRUE(self->path && self->path->ends_with("platform_test"));
  EXPECT_FALSE(self->arguments.empty());
  EXPECT_TRUE(self->cwd);
  EXPECT_GT(self->footprint, 100'000U);
  EXPECT_GT(self->startTime, 0);
  EXPECT_TRUE(std::ranges::count(self->ports, listener.port()) == 1);
  EXPECT_TRUE(std::ranges::is_sorted(listing->processes, {}, &ProcessFacts::startTime));
}

TEST(ProcessSource, ASocketSharedWithAChildBelongsToTheParent) {
  const Listener listener;
  const Child child;
  const auto listing = listProcesses({::geteuid(), ListingDetail::listeners});
  ASSERT_TRUE(listing);
  const ProcessFacts* self = find(*listing, ::getpid());
  const ProcessFacts* other = find(*listing, child.pid());
  ASSERT_TRUE(self != nullptr && other != nullptr);
  EXPECT_TRUE(std::ranges::count(self->ports, listener.port()) == 1);
  EXPECT_FALSE(self->reachable);
  EXPECT_TRUE(other->ports.empty());
}

TEST(ProcessSource, NamesOfAnyBytesAreSeenAsTheyAre) {
  for (const char* name : {"a b) c", "x\ny", "\xff\xfe(", ")"}) {
    const Child child([name] { return ::prctl(PR_SET_NAME, name) == 0; });
    const std::vector<ProcessFacts> chain = processChain(child.pid());
    ASSERT_FALSE(chain.empty());
    EXPECT_EQ(chain.front().name, name);
    EXPECT_EQ(chain.front().ppid, ::getpid());
  }
}

TEST(ProcessSource, AProcessThatForbidsToBeTracedIsItsOwnUsers) {
  // Without rights the files of such a process show the superuser; with them, it takes another user to see that.
  const uid_t user = ::geteuid() == 0 ? 65534 : ::geteuid();
  const Child child([user] { return ::setuid(user) == 0 && ::prctl(PR_SET_DUMPABLE, 0) == 0; });
  const auto listing = listProcesses({::geteuid(), ListingDetail::listeners});
  ASSERT_TRUE(listing);
  const ProcessFacts* found = find(*listing, child.pid());
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->uid, user);
}

TEST(ProcessSource, AChainGoesUpToTheFirstProcess) {
  const Child child;
  const std::vector<ProcessFacts> chain = processChain(child.pid());
  ASSERT_GE(chain.size(), 3U);
  EXPECT_EQ(chain[0].pid, child.pid());
  EXPECT_EQ(chain[1].pid, ::getpid());
  EXPECT_EQ(chain.back().pid, 1);
  EXPECT_TRUE(processChain(0x7FFFFFFF).empty());
}

TEST(ProcessSource, FindsWhatHangsBelowAProcess) {
  const Child child;
  const std::vector<ProcessFacts> below = processesBelow(::getpid());
  EXPECT_EQ(std::ranges::count(below, child.pid(), &ProcessFacts::pid), 1);
}

TEST(ProcessSource, ProcessesThatEndedAreNotListed) {
  const Child child;
  ASSERT_TRUE(startStampOf(child.pid()));
  ::kill(child.pid(), SIGKILL);
  siginfo_t ended = {};
  ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(child.pid()), &ended, WEXITED | WNOWAIT), 0);
  EXPECT_EQ(startStampOf(child.pid()), std::nullopt);
  EXPECT_EQ(find(*listProcesses({::geteuid(), ListingDetail::agents}), child.pid()), nullptr);
}

TEST(ProcessSource, ListenersOutsideTheAgentsAreNotTakenForLostOnes) {
  const Listener listener;
  EXPECT_EQ(listProcesses({::geteuid(), ListingDetail::agents})->unownedListeners, 0);
}

TEST(ProcessSource, TheBootHasAnId) { EXPECT_EQ(bootId().size(), 36U); }

TEST(SocketTable, BothWaysSeeTheSameListener) {
  const Listener listener;
  const auto proc = ProcFolder::open();
  ASSERT_TRUE(proc);
  const auto holds = [&](const std::vector<TcpSocket>& sockets) {
    return std::ranges::any_of(sockets, [&](const TcpSocket& each) {
      return each.port == listener.port() && each.loopback && each.state == TcpState::listening && each.inode > 0;
    });
  };
  EXPECT_TRUE(holds(tcpSocketsByText(*proc, false)));
  const auto netlink = tcpSocketsByNetlink(false);
  ASSERT_TRUE(netlink);
  EXPECT_TRUE(holds(*netlink));
  EXPECT_TRUE(listeningPorts().contains(listener.port()));
}

TEST(ProcessHandle, OpensOnlyTheProcessWithTheStamp) {
  const Child child;
  const auto stamp = startStampOf(child.pid());
  ASSERT_TRUE(stamp);
  EXPECT_TRUE(ProcessHandle::open({child.pid(), *stamp}));
  const auto other = ProcessHandle::open({child.pid(), *stamp + 1});
  ASSERT_FALSE(other);
  EXPECT_EQ(other.error().code, ESRCH);
}

TEST(ProcessStopper, EndsWhatFollowsTheFirstRequest) {
  const Child child;
  const std::vector<StopTarget> targets{{child.pid(), *startStampOf(child.pid()), true}};
  EXPECT_EQ(stopProcesses(targets, {.patience = Seconds{20}}), std::vector{StopFate::stopped});
}

TEST(ProcessStopper, AsksTheRestAfterTheFirst) {
  const Child first;
  const Child second;
  const std::vector<StopTarget> targets{{first.pid(), *startStampOf(first.pid()), true},
                                        {second.pid(), *startStampOf(second.pid()), false}};
  EXPECT_EQ(stopProcesses(targets, {.patience = Seconds{20}}), (std::vector{StopFate::stopped, StopFate::stopped}));
}

TEST(ProcessStopper, ForceEndsWhatDoesNotListenAndNothingElseDoes) {
  const Child stubborn([] { return ::signal(SIGTERM, SIG_IGN) != SIG_ERR; });
  const std::vector<StopTarget> targets{{stubborn.pid(), *startStampOf(stubborn.pid()), true}};
  EXPECT_EQ(stopProcesses(targets, {.patience = Seconds{0.05}}), std::vector{StopFate::running});
  EXPECT_EQ(stopProcesses(targets, {.patience = Seconds{0.2}, .force = true}), std::vector{StopFate::stopped});
}

TEST(ProcessStopper, AReusedPidIsNotTouched) {
  const Child child;
  const std::vector<StopTarget> targets{{child.pid(), *startStampOf(child.pid()) - 1, true}};
  EXPECT_EQ(stopProcesses(targets, {.patience = Seconds{1}, .force = true}), std::vector{StopFate::gone});
  EXPECT_TRUE(startStampOf(child.pid()));
}

/// The fates of `count` children of a process that stops them under a limit of descriptors; a process of its own,
/// because not everybody may take such a limit back.
std::vector<StopFate> fatesUnder(const rlimit& limit, std::size_t count) {
  int results[2] = {};
  if (::pipe(results) != 0) return {};
  const pid_t stopper = ::fork();
  if (stopper == 0) {
    {
      const std::vector<Child> children(count);
      std::vector<StopTarget> targets;
      for (const Child& child : children) targets.push_back({child.pid(), *startStampOf(child.pid()), true});
      if (::setrlimit(RLIMIT_NOFILE, &limit) == 0) {
        const auto fates = stopProcesses(targets, {.patience = Seconds{20}});
        (void)!::write(results[1], fates.data(), fates.size() * sizeof(StopFate));
      }
    }
    ::_exit(0);
  }
  ::close(results[1]);
  std::vector<StopFate> fates(count + 1);  // room for one too many, which a pipe delivers in one piece
  const ssize_t got = ::read(results[0], fates.data(), fates.size() * sizeof(StopFate));
  ::close(results[0]);
  ::waitpid(stopper, nullptr, 0);
  fates.resize(got < 0 ? 0 : static_cast<std::size_t>(got) / sizeof(StopFate));
  return fates;
}

TEST(ProcessStopper, MoreThanTheUsualLimitOfDescriptorsAreStopped) {
  EXPECT_EQ(fatesUnder({.rlim_cur = 40, .rlim_max = 100}, 60), std::vector(60, StopFate::stopped));
}

TEST(ProcessStopper, WhatNoDescriptorIsLeftForIsNotSaidToHaveEnded) {
  std::vector<StopFate> expected(60, StopFate::refused);
  std::ranges::fill_n(expected.begin(), 18, StopFate::stopped);
  EXPECT_EQ(fatesUnder({.rlim_cur = 40, .rlim_max = 50}, 60), expected);
}

TEST(ProcessStopper, NeverTouchesItself) {
  const std::vector<StopTarget> targets{{::getpid(), *startStampOf(::getpid()), true}};
  EXPECT_EQ(stopProcesses(targets, {.patience = Seconds{1}, .force = true}), std::vector{StopFate::refused});
}

}  // namespace
}  // namespace brindle
