// Long random lives of a daemon against a second, independent account of the rules, kept in whole milliseconds.
#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <stdlib.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <set>

#include "tests/helper/helper_fakes.h"

namespace brindle {
namespace {

// The number of lives each property tries, unless RC_PARAMS says otherwise.
constexpr const char* kTwentyThousand = "max_success=20000";
const int kParametersSet = setenv("RC_PARAMS", kTwentyThousand, 0);

using Lines = std::vector<std::string>;
using Steps = std::vector<std::uint16_t>;

rc::Gen<Steps> genSteps() {
  return rc::gen::container<Steps>(
      rc::gen::map(rc::gen::inRange<int>(0, 65536), [](int n) { return static_cast<std::uint16_t>(n); }));
}

/// The rules as a table of states: ON, HELD, and ON with the refusal flag.
class Model {
 public:
  Lines start() {
    mode_ = Mode::on;
    clients_.clear();
    freeSince_ = now;
    return {"restoreSleep helperStart"};
  }
  Lines disable(std::int64_t milliseconds) {
    switch (mode_) {
      case Mode::refusing:
        return {"no Max duration reached. Turn it off first."};
      case Mode::held:
        beat_ = now;
        return {"yes Sleep already disabled"};
      case Mode::on:
        break;
    }
    if (switchFails) return {"disableSleep request", "no scripted failed"};
    mode_ = Mode::held;
    beat_ = now;
    end_ = now + std::min<std::int64_t>(std::max<std::int64_t>(milliseconds, 60'000), 43'200'000);
    return {"disableSleep request", "yes Sleep disabled"};
  }
  Lines enable() {
    mode_ = Mode::on;
    return {"restoreSleep turnedOff", switchFails ? "no scripted failed" : "yes Sleep on"};
  }
  Lines beat() {
    if (mode_ == Mode::held) beat_ = now;
    return {mode_ == Mode::held ? "beat 1" : "beat 0"};
  }
  Lines status() const {
    const bool held = mode_ == Mode::held;
    return {"status " + std::to_string(held) + " " + std::to_string(held ? std::max<std::int64_t>(end_ - now, 0) : 0)};
  }
  void accept(std::uint64_t client) { clients_.insert(client); }
  Lines end(std::uint64_t client) {
    if (clients_.erase(client) == 0) return {};
    freeSince_ = now;
    if (mode_ != Mode::held) return {};
    mode_ = Mode::on;
    return {"restoreSleep connectionLost"};
  }
  Lines tick() {
    Lines lines;
    if (mode_ == Mode::held && now >= end_) {
      mode_ = Mode::refusing;
      lines.emplace_back("restoreSleep maxDuration");
    } else if (mode_ == Mode::held && now - beat_ > 90'000) {
      mode_ = Mode::on;
      lines.emplace_back("restoreSleep heartbeatLost");
    }
    if (mode_ != Mode::held && clients_.empty() && now - freeSince_ > 120'000) lines.emplace_back("exit");
    return lines;
  }

  std::int64_t now = 1'800'000'000'000;
  bool switchFails = false;

 private:
  enum class Mode { on, held, refusing };
  Mode mode_ = Mode::on;
  std::int64_t end_ = 0;
  std::int64_t beat_ = 0;
  std::int64_t freeSince_ = 0;
  std::set<std::uint64_t> clients_;
};

/// The daemon, with everything it does as the same lines.
class Subject {
 public:
  Subject() {
    daemon.sleepSwitch.duringRun = [this] {
      const auto& run = daemon.sleepSwitch.runs.back();
      lines.push_back(std::string(textOf(run.command)) + " " +
                      (run.reason ? std::string(textOf(*run.reason)) : "request"));
    };
  }
  void setNow(std::int64_t milliseconds) { daemon.now = dateFromSeconds(static_cast<double>(milliseconds) / 1000); }
  void set(bool disabled, std::int64_t milliseconds) {
    for (const auto& reply : daemon.set(disabled, static_cast<double>(milliseconds) / 1000)) {
      lines.push_back((reply.ok ? "yes " : "no ") + reply.message);
    }
  }
  void beat() {
    for (const bool disabled : daemon.beat()) lines.push_back("beat " + std::to_string(disabled));
  }
  void status() {
    for (const auto& reply : daemon.status()) {
      lines.push_back("status " + std::to_string(reply.sleepDisabled) + " " +
                      std::to_string(std::llround(reply.remaining.count() * 1000)));
    }
  }
  void tick() {
    const int before = daemon.exit.idleExits;
    daemon.queue.fire();
    if (daemon.exit.idleExits != before) lines.emplace_back("exit");
  }
  Lines take() { return std::exchange(lines, {}); }

  TestDaemon daemon;
  Lines lines;
};

/// One step in the life of both; answers what the model expects. Times that floating point cannot tell from a limit
/// are kept off the limits: the clock moves in odd milliseconds, limits are whole seconds, and single limits have
/// their own tests.
Lines step(Model& model, Subject& subject, std::uint16_t code) {
  const std::int64_t amount = code / 16;  // 0 to 4095
  const std::uint64_t client = static_cast<std::uint64_t>(amount % 3);
  const auto advance = [&](std::int64_t milliseconds) {
    model.now += milliseconds;
    subject.setNow(model.now);
  };
  switch (code % 16) {
    case 0:
    case 1:
      subject.set(true, amount * 37);
      return model.disable(amount * 37);
    case 2:
      subject.set(true, amount * 20'000 - 1'000'000);
      return model.disable(amount * 20'000 - 1'000'000);
    case 3:
      subject.set(false, amount);
      return model.enable();
    case 4:
    case 5:
      subject.beat();
      return model.beat();
    case 6:
      subject.status();
      return model.status();
    case 7:
      subject.daemon.accept(client);
      model.accept(client);
      return {};
    case 8:
      subject.daemon.end(client);
      return model.end(client);
    case 9:
      advance(amount * 30 + 1);
      return {};
    case 10:
      advance(-(amount * 11 + 1));
      return {};  // the clock was set back
    case 11:
      subject.daemon.sleepSwitch.fails = model.switchFails = amount % 4 == 0;
      return {};
    case 12:
      if (amount % 16 != 0) return {};
      subject.daemon.makeHelper();
      RC_ASSERT(subject.daemon.helper->start());
      return model.start();
    default:
      advance(5'001);
      subject.tick();
      return model.tick();
  }
}

TEST(HelperModel, LivesAsTheRulesSay) {
  ASSERT_EQ(kParametersSet, 0);
  std::int64_t lives = 0, holds = 0, reverts = 0;
  const bool held = rc::check("the daemon does what the table says", [&] {
    const auto steps = *genSteps();
    Model model;
    Subject subject;
    subject.setNow(model.now);
    subject.daemon.makeHelper();
    RC_ASSERT(subject.daemon.helper->start());
    RC_ASSERT(subject.take() == model.start());
    for (const auto code : steps) {
      const Lines expected = step(model, subject, code);
      const Lines actual = subject.take();
      RC_ASSERT(actual == expected);
      for (const auto& line : actual) {
        holds += line == "yes Sleep disabled" ? 1 : 0;
        reverts += line == "restoreSleep heartbeatLost" || line == "restoreSleep maxDuration" ? 1 : 0;
      }
    }
    ++lives;
  });
  EXPECT_TRUE(held);
  EXPECT_GE(lives, 10'000);
  EXPECT_GT(holds, 10'000) << "the lives must be full of holds";
  EXPECT_GT(reverts, 1'000) << "and of limits that are met";
}

TEST(HelperModel, SilenceOfMoreThanNinetySecondsAlwaysEndsAtTheNextTick) {
  std::int64_t ended = 0;
  const bool held = rc::check("sleep is back on by the first tick past 90 s of silence", [&] {
    const auto steps = *genSteps();
    Model ignored;  // only moves the clock
    Subject subject;
    subject.setNow(ignored.now);
    subject.daemon.makeHelper();
    RC_ASSERT(subject.daemon.helper->start());
    for (const auto code : steps) {
      if (code % 16 == 10) continue;  // no backward jumps
      step(ignored, subject, code);
    }
    const auto before = subject.daemon.status();
    RC_ASSERT(before.size() == 1U);
    ended += before[0].sleepDisabled ? 1 : 0;
    subject.setNow(ignored.now + 90'001);
    subject.tick();
    const auto after = subject.daemon.status();
    RC_ASSERT(after.size() == 1U);
    RC_ASSERT(!after[0].sleepDisabled);
  });
  EXPECT_TRUE(held);
  EXPECT_GT(ended, 1'000) << "the lives must end in holds";
}

}  // namespace
}  // namespace brindle
