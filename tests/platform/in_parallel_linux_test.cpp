#include "platform/in_parallel_linux.h"

#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <set>
#include <thread>
#include <vector>

#include "platform/process_source.h"

namespace brindle {
namespace {

/// Enough for a second thread, however few processes the machine has beside them.
constexpr std::size_t kLasting = kWorthAThread + 36;
constexpr std::size_t kPassing = 24;

pid_t startSleeper() {
  const pid_t pid = ::fork();
  if (pid != 0) return pid;
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  for (;;) ::pause();
}

/// A family that is always changing: a child that keeps kLasting children, and ends and replaces kPassing others as
/// fast as it can. Ended as a group with the value.
class Bustle {
 public:
  Bustle() {
    int ready[2] = {};
    if (::pipe(ready) != 0) return;
    parent_ = ::fork();
    if (parent_ == 0) bustle(ready[1]);
    (void)::setpgid(parent_, parent_);
    char byte = 0;
    (void)!::read(ready[0], &byte, 1);
    ::close(ready[0]);
    ::close(ready[1]);
  }
  Bustle(const Bustle&) = delete;
  Bustle& operator=(const Bustle&) = delete;
  ~Bustle() {
    ::kill(-parent_, SIGKILL);
    ::waitpid(parent_, nullptr, 0);
  }
  [[nodiscard]] std::int32_t parent() const { return parent_; }

 private:
  [[noreturn]] static void bustle(int ready) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    (void)::setpgid(0, 0);
    for (std::size_t each = 0; each < kLasting; ++each) (void)startSleeper();
    std::vector<pid_t> passing(kPassing, 0);
    (void)!::write(ready, "x", 1);
    for (std::size_t at = 0;; at = (at + 1) % kPassing) {
      if (passing[at] > 0) {
        ::kill(passing[at], SIGKILL);
        ::waitpid(passing[at], nullptr, 0);
      }
      passing[at] = startSleeper();
    }
  }

  pid_t parent_ = -1;
};

TEST(InParallel, WorksOnEachNumberOnce) {
  auto proc = ProcFolder::open();
  ASSERT_TRUE(proc);
  for (const std::size_t count :
       {std::size_t{0}, std::size_t{1}, kWorthAThread - 1, kWorthAThread, kWorthAThread + 1, std::size_t{1001}}) {
    std::vector<int> calls(count, 0);
    inParallel(*proc, count, [&](ProcFolder&, std::size_t at) { ++calls[at]; });
    EXPECT_EQ(calls, std::vector<int>(count, 1));
  }
}

TEST(InParallel, TakesASecondThreadWithAFolderOfItsOwnWhereThatPays) {
  auto proc = ProcFolder::open();
  ASSERT_TRUE(proc);
  const auto looks = [&](std::size_t count) {
    std::vector<std::pair<std::thread::id, ProcFolder*>> seen(count);
    inParallel(*proc, count, [&](ProcFolder& folder, std::size_t at) {
      seen[at] = {std::this_thread::get_id(), &folder};
    });
    return std::set(seen.begin(), seen.end());
  };
  EXPECT_EQ(looks(kWorthAThread - 1).size(), 1U);
  const auto two = looks(kWorthAThread);
  ASSERT_EQ(two.size(), 2U);
  EXPECT_NE(two.begin()->first, two.rbegin()->first);
  EXPECT_NE(two.begin()->second, two.rbegin()->second);
}

TEST(InParallel, ProcessesThatComeAndGoMeanwhileLeaveTheListingSound) {
  const Bustle bustle;
  for (const ListingDetail detail : {ListingDetail::everything, ListingDetail::listeners, ListingDetail::agents}) {
    for (int round = 0; round < 25; ++round) {
      const auto listing = listProcesses({::geteuid(), detail});
      ASSERT_TRUE(listing);
      std::set<std::int32_t> pids;
      std::size_t ofBustle = 0;
      for (const ProcessFacts& facts : listing->processes) {
        EXPECT_TRUE(pids.insert(facts.pid).second) << "twice: " << facts.pid;
        EXPECT_FALSE(facts.name.empty());
        EXPECT_GT(facts.startTime, 0);
        if (facts.ppid == bustle.parent()) ++ofBustle;
      }
      EXPECT_TRUE(std::ranges::is_sorted(listing->processes, {}, &ProcessFacts::startTime));
      EXPECT_TRUE(pids.contains(::getpid()));
      EXPECT_TRUE(pids.contains(bustle.parent()));
      EXPECT_GE(ofBustle, kLasting);
      // The folder is read while it changes, and may show one that has ended beside the one that took its place.
      EXPECT_LE(ofBustle, kLasting + 2 * kPassing);
    }
  }
}

TEST(InParallel, OneThreadDoesItAllWhereNoOtherCanBeHad) {
  if (::geteuid() != 0) GTEST_SKIP() << "skipped: the limit of another user takes root";
  const pid_t child = ::fork();
  if (child == 0) {
    const rlimit none{.rlim_cur = 0, .rlim_max = 0};
    auto proc = ProcFolder::open();
    std::vector<int> calls(kWorthAThread, 0);
    if (!proc || ::setrlimit(RLIMIT_NPROC, &none) != 0 || ::setuid(65534) != 0) ::_exit(2);
    inParallel(*proc, calls.size(), [&](ProcFolder&, std::size_t at) { ++calls[at]; });
    ::_exit(calls == std::vector<int>(kWorthAThread, 1) ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
  EXPECT_EQ(WEXITSTATUS(status), 0);
}

}  // namespace
}  // namespace brindle
