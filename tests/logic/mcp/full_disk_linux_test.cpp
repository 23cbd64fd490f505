// The shared stores on a disk that is full: a file system of a few pages, mounted where only this test sees it.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>

#include <cerrno>
#include <string>
#include <vector>

#include "base/lines.h"
#include "logic/events/agent_event_inbox.h"
#include "logic/mcp/mcp_heartbeat.h"
#include "logic/mcp/mcp_quit_inbox.h"
#include "logic/mcp/mcp_request_log.h"
#include "logic/widget/widget_feed.h"
#include "tests/base/store_support.h"
#include "tests/base/temporary_folder.h"

namespace brindle {
namespace {

constexpr Date kNow = dateFromSeconds(1'772'352'000);

class StoresOnAFullDisk : public ::testing::Test {
 protected:
  static constexpr int kNoNamespace = 77;

  // Runs `check` in a child whose own mount namespace has a small file system on the folder.
  template <typename Check>
  void onTinyDisk(const Check& check) {
    const pid_t child = ::fork();
    if (child == 0) {
      if (::unshare(CLONE_NEWNS) != 0 || ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
          ::mount("tmpfs", folder.path().c_str(), "tmpfs", 0, "size=65536,mode=0700") != 0) {
        ::_exit(kNoNamespace);
      }
      ::_exit(check() ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    if (WEXITSTATUS(status) == kNoNamespace) GTEST_SKIP() << "skipped: needs the right to mount a file system";
    EXPECT_EQ(WEXITSTATUS(status), 0);
  }

  // Leaves fewer than `left` bytes free; tmpfs gives out whole pages.
  void fillDisk() const {
    const int file = ::open(folder.file("ballast").c_str(), O_WRONLY | O_CREAT, 0600);
    const std::string page(4096, 'x');
    while (::write(file, page.data(), page.size()) > 0) {
    }
    ::close(file);
  }

  TemporaryFolder folder;
};

AgentEvent event(std::size_t number) {
  return {.id = std::to_string(number), .time = kNow, .agent = "Claude Code", .cwd = std::string(300, 'w')};
}

TEST_F(StoresOnAFullDisk, AnEventThatDoesNotFitIsTakenBackWholeAndLaterOnesSurvive) {
  onTinyDisk([&] {
    const AgentEventInbox inbox(folder.path());
    // Fill it with events alone: the last one that does not fit must leave no half line behind.
    for (std::size_t i = 0; i < 400; ++i) {
      if (!inbox.append(event(i))) return false;
    }
    const std::string content = contentOf(folder.file("agent-events.jsonl"));
    const std::size_t lines = nonEmptyLines(content).size();
    if (content.empty() || content.back() != '\n' || lines >= 400 || lines < 50) return false;
    if (readAgentEventLines(content).size() != lines) return false;
    const std::vector<AgentEvent> drained = inbox.drain(kNow);
    if (drained.size() != lines || drained.front() != event(0)) return false;
    return inbox.append(event(7)) && inbox.drain(kNow) == std::vector{event(7)};
  });
}

TEST_F(StoresOnAFullDisk, QuitInboxReportsTheErrorAndKeepsTheOldList) {
  onTinyDisk([&] {
    const MCPQuitInbox inbox(folder.path());
    const MCPQuitRequest request{.id = "a", .time = kNow, .kind = "pid", .pid = 1, .status = "pending"};
    if (!inbox.add(request)) return false;
    fillDisk();
    const Outcome added = inbox.add(request);
    const Outcome changed = inbox.setStatus({.id = "a", .status = "confirmed"});
    return !added && added.error().code == ENOSPC && !changed && inbox.pending() == std::vector{request} &&
           folder.entries() == 3;  // the list, its lock, the ballast: no temporary file
  });
}

TEST_F(StoresOnAFullDisk, LogReportsTheErrorAndKeepsWholeLines) {
  onTinyDisk([&] {
    const MCPRequestLog log(folder.path());
    const MCPLogEntry entry{.time = kNow, .tool = "safety", .summary = std::string(500, 's'), .result = "ok"};
    std::size_t fitted = 0;
    while (log.append(entry)) ++fitted;
    const std::string content = contentOf(folder.file("mcp-log.jsonl"));
    return fitted > 50 &&
           content ==
               [&] {
                 std::string lines;
                 for (std::size_t i = 0; i < fitted; ++i) lines += mcpLogLine(entry);
                 return lines;
               }() &&
           !log.trim(kNow) && log.recent(kNow).size() == fitted;
  });
}

TEST_F(StoresOnAFullDisk, HeartbeatKeepsTheLastStamp) {
  onTinyDisk([&] {
    if (!MCPHeartbeat::write(folder.path(), kNow)) return false;
    fillDisk();
    return !MCPHeartbeat::write(folder.path(), kNow + Seconds{5}) &&
           MCPHeartbeat::isFresh(folder.path(), kNow, Seconds{1}) &&
           !MCPHeartbeat::isFresh(folder.path(), kNow + Seconds{2}, Seconds{1});
  });
}

TEST_F(StoresOnAFullDisk, WidgetFeedKeepsTheLastSnapshot) {
  onTinyDisk([&] {
    const WidgetSnapshot last{.takenAt = kNow, .ghosts = 2};
    if (!WidgetFeed::write(folder.path(), last)) return false;
    fillDisk();
    const Outcome written = WidgetFeed::write(folder.path(), {.takenAt = kNow, .ghosts = 3});
    return !written && written.error().code == ENOSPC && WidgetFeed::read(folder.path()) == last &&
           folder.entries() == 2;  // the snapshot and the ballast
  });
}

}  // namespace
}  // namespace brindle
