// Stand-ins for everything that the platform gives to Helper, cranked and read by hand.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "helper/helper.h"

namespace brindle {

/// Work waits until runAll(); the timer fires when fire() is called.
class HandCrankedQueue final : public SerialQueue {
 public:
  void sync(const std::function<void()>& work) override {
    runAll();  // what was handed in before runs before
    inside_ = true;
    work();
    inside_ = false;
  }
  void async(std::function<void()> work) override { waiting_.push_back(std::move(work)); }
  std::unique_ptr<QueueTimer> repeat(Seconds interval, std::function<void()> work) override {
    if (!givesTimers) return nullptr;
    interval_ = interval;
    timer_ = std::make_shared<std::function<void()>>(std::move(work));
    return std::make_unique<Timer>(timer_);
  }

  void runAll() {
    while (!waiting_.empty()) {
      auto work = std::move(waiting_.front());
      waiting_.pop_front();
      work();
    }
  }
  void fire() {
    runAll();
    if (timer_ && *timer_) (*timer_)();
  }
  [[nodiscard]] std::size_t waiting() const { return waiting_.size(); }
  [[nodiscard]] bool timerRuns() const { return timer_ && *timer_; }
  [[nodiscard]] Seconds interval() const { return interval_; }
  /// Whether a piece of synchronous work runs right now, so that nothing else can.
  [[nodiscard]] bool isInside() const { return inside_; }

  bool givesTimers = true;

 private:
  struct Timer final : QueueTimer {
    explicit Timer(std::shared_ptr<std::function<void()>> shared) : work(std::move(shared)) {}
    ~Timer() override { *work = nullptr; }
    std::shared_ptr<std::function<void()>> work;
  };
  std::deque<std::function<void()>> waiting_;
  std::shared_ptr<std::function<void()>> timer_;
  Seconds interval_{0};
  bool inside_ = false;
};

struct SwitchRun {
  PmsetCommand command = PmsetCommand::restoreSleep;
  std::optional<RevertReason> reason;

  bool operator==(const SwitchRun&) const = default;
};

/// Remembers what it was told, and fails while `fails` is set.
class ScriptedSwitch final : public SleepSwitch {
 public:
  bool run(PmsetCommand command, std::optional<RevertReason> reason) override {
    runs.push_back({command, reason});
    if (duringRun) duringRun();
    return !fails;
  }
  std::string_view name() const override { return "scripted"; }

  std::vector<SwitchRun> runs;
  bool fails = false;
  std::function<void()> duringRun;
};

class RecordingLog final : public HelperLog {
 public:
  void event(std::string_view text) override { lines.emplace_back(text); }
  void error(std::string_view text) override { lines.push_back("error: " + std::string(text)); }

  std::vector<std::string> lines;
};

class RecordingExit final : public ProcessExit {
 public:
  bool callsPending() const override { return pending; }
  void exitWhenIdle() override { ++idleExits; }
  void exitAfterTermination() override {
    ++terminations;
    if (duringTermination) duringTermination();
  }

  bool pending = false;
  int idleExits = 0;
  int terminations = 0;
  std::function<void()> duringTermination;
};

/// A whole daemon. It is Helper's caller: methods run the queue before they answer.
struct TestDaemon {
  TestDaemon() { makeHelper(); }

  void makeHelper() {
    helper = Helper::create(
        {.queue = queue, .sleepSwitch = sleepSwitch, .log = log, .exit = exit, .now = [this] { return now; }});
  }
  /// Starts the daemon and forgets the start's own switch run and log line.
  TestDaemon& started() {
    EXPECT_TRUE(helper->start());
    sleepSwitch.runs.clear();
    log.lines.clear();
    return *this;
  }
  void pass(double seconds) { now += Seconds{seconds}; }
  /// `seconds` later the timer fires once.
  void tickAfter(double seconds) {
    pass(seconds);
    queue.fire();
  }
  void accept(std::uint64_t number) { helper->accept(ConnectionId{number}); }
  void end(std::uint64_t number) {
    helper->connectionEnded(ConnectionId{number});
    queue.runAll();
  }
  std::vector<SleepReply> set(bool disabled, double maxDuration) {
    std::vector<SleepReply> replies;
    helper->setSleepDisabled({.disabled = disabled, .maxDuration = Seconds{maxDuration}},
                             [&replies](SleepReply reply) { replies.push_back(std::move(reply)); });
    queue.runAll();
    return replies;
  }
  std::vector<bool> beat() {
    std::vector<bool> replies;
    helper->heartbeat([&replies](bool disabled) { replies.push_back(disabled); });
    queue.runAll();
    return replies;
  }
  std::vector<HelperStatus> status() {
    std::vector<HelperStatus> replies;
    helper->status([&replies](HelperStatus reply) { replies.push_back(reply); });
    queue.runAll();
    return replies;
  }

  HandCrankedQueue queue;
  ScriptedSwitch sleepSwitch;
  RecordingLog log;
  RecordingExit exit;
  Date now = dateFromSeconds(1'800'000'000);
  std::shared_ptr<Helper> helper;
};

inline const SwitchRun kDisableRun{PmsetCommand::disableSleep, std::nullopt};
inline SwitchRun restoreRun(RevertReason reason) { return {PmsetCommand::restoreSleep, reason}; }

}  // namespace brindle
