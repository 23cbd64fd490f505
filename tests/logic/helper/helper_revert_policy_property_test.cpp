// The policy against a second writing of its rules: a list of rows, of which the first that fits is taken.
#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "logic/helper/helper_revert_policy.h"

namespace brindle {
namespace {

enum class Event { start, ask, allow, beat, lose, tick, undo };

struct Model {
  bool off = false;
  bool spent = false;
  double end = 0;
  double beat = 0;
  std::string reason;
};

struct Input {
  Event event;
  double now;
  double duration;
};

enum class Answer { nothing, off, on, refused };

struct Row {
  std::function<bool(const Model&, const Input&)> fits;
  std::function<void(Model&, const Input&)> then;
  Answer answer;
};

double bounded(double duration) { return std::isnan(duration) ? 60 : std::fmin(std::fmax(duration, 60), 43200); }

const std::vector<Row>& rows() {
  static const std::vector<Row> kRows{
      {[](auto&, auto& in) { return in.event == Event::start; }, [](auto& m, auto&) { m = {.reason = "helperStart"}; },
       Answer::on},
      {[](auto& m, auto& in) { return in.event == Event::ask && m.spent; }, [](auto&, auto&) {}, Answer::refused},
      {[](auto& m, auto& in) { return in.event == Event::ask && m.off; }, [](auto& m, auto& in) { m.beat = in.now; },
       Answer::nothing},
      {[](auto&, auto& in) { return in.event == Event::ask; },
       [](auto& m, auto& in) {
         m.off = true;
         m.beat = in.now;
         m.end = in.now + bounded(in.duration);
       },
       Answer::off},
      {[](auto& m, auto& in) { return in.event == Event::allow && m.off; },
       [](auto& m, auto&) { m = {.reason = "turnedOff"}; }, Answer::on},
      {[](auto&, auto& in) { return in.event == Event::allow; }, [](auto& m, auto&) { m.spent = false; }, Answer::on},
      {[](auto& m, auto&) { return !m.off; }, [](auto&, auto&) {}, Answer::nothing},
      {[](auto&, auto& in) { return in.event == Event::beat; }, [](auto& m, auto& in) { m.beat = in.now; },
       Answer::nothing},
      {[](auto&, auto& in) { return in.event == Event::lose; },
       [](auto& m, auto&) { m = {.spent = m.spent, .reason = "connectionLost"}; }, Answer::on},
      {[](auto&, auto& in) { return in.event == Event::undo; }, [](auto& m, auto&) { m.off = false; }, Answer::nothing},
      {[](auto& m, auto& in) { return in.now >= m.end; },
       [](auto& m, auto&) { m = {.spent = true, .reason = "maxDuration"}; }, Answer::on},
      {[](auto& m, auto& in) { return in.now - m.beat > 90; },
       [](auto& m, auto&) { m = {.spent = m.spent, .reason = "heartbeatLost"}; }, Answer::on},
  };
  return kRows;
}

Answer apply(Model& model, const Input& input) {
  for (const Row& row : rows()) {
    if (!row.fits(model, input)) continue;
    row.then(model, input);
    return row.answer;
  }
  return Answer::nothing;
}

Answer asAnswer(std::optional<PmsetCommand> command) {
  if (!command) return Answer::nothing;
  return disablesSleep(*command) ? Answer::off : Answer::on;
}

Answer asAnswer(const RequestAnswer& answer) {
  if (std::holds_alternative<RequestRefused>(answer)) return Answer::refused;
  const auto* accepted = std::get_if<RequestAcceptedWithCommand>(&answer);
  return asAnswer(accepted != nullptr ? std::optional(accepted->command) : std::nullopt);
}

Answer apply(HelperRevertPolicy& policy, const Input& input) {
  const Date now = dateFromSeconds(input.now);
  switch (input.event) {
    case Event::start:
      return asAnswer(policy.helperStarted());
    case Event::ask:
      return asAnswer(policy.request(true, now, Seconds{input.duration}));
    case Event::allow:
      return asAnswer(policy.request(false, now, Seconds{input.duration}));
    case Event::beat:
      policy.heartbeat(now);
      return Answer::nothing;
    case Event::lose:
      return asAnswer(policy.connectionLost());
    case Event::tick:
      return asAnswer(policy.tick(now));
    case Event::undo:
      policy.clearDisabled();
      return Answer::nothing;
  }
  return Answer::nothing;
}

std::vector<Input> anyHistory(const std::vector<double>& steps) {
  double now = 1e6;
  std::vector<Input> history;
  const int length = *rc::gen::inRange(0, 60);
  for (int i = 0; i < length; ++i) {
    now += *rc::gen::elementOf(steps);
    const auto event = *rc::gen::elementOf(std::vector<Event>{Event::start, Event::ask, Event::ask, Event::allow,
                                                              Event::beat, Event::beat, Event::lose, Event::tick,
                                                              Event::tick, Event::tick, Event::undo});
    const double duration = *rc::gen::elementOf(std::vector<double>{
        -1, 0, 59.9, 60, 61, 600, 43200, 43200.5, std::nan(""), std::numeric_limits<double>::infinity()});
    history.push_back({event, now, duration});
  }
  return history;
}

const std::vector<double> kForwardSteps{0, 0.5, 5, 5, 30, 59, 60, 89.999, 90, 90.001, 600, 43200};
const std::vector<double> kAnySteps{0, 5, 5, 30, 60, 90, 90.001, 600, 43200, -1, -90, -5000};

RC_GTEST_PROP(HelperRevertPolicyModel, AgreesWithTheTableThroughAnyHistory, ()) {
  Model model;
  HelperRevertPolicy policy;
  for (const Input& input : anyHistory(kAnySteps)) {
    RC_ASSERT(apply(policy, input) == apply(model, input));
    RC_ASSERT(policy.sleepDisabled == model.off);
    RC_ASSERT(policy.expired == model.spent);
    RC_ASSERT(std::string(policy.lastRevert ? textOf(*policy.lastRevert) : "") == model.reason);
    RC_ASSERT(policy.deadline.has_value() == model.off);
    if (model.off) {
      RC_ASSERT(*policy.deadline == dateFromSeconds(model.end));
      RC_ASSERT(policy.lastHeartbeat == dateFromSeconds(model.beat));
      RC_ASSERT(policy.remaining(dateFromSeconds(input.now)) == Seconds{std::fmax(0, model.end - input.now)});
    }
  }
}

RC_GTEST_PROP(HelperRevertPolicyModel, NeverHoldsPastNinetySecondsOfSilenceWhileTheClockRunsForward, ()) {
  HelperRevertPolicy policy;
  double lastSign = 0;
  for (const Input& input : anyHistory(kForwardSteps)) {
    (void)apply(policy, input);
    if (input.event == Event::ask || input.event == Event::beat) lastSign = input.now;
    if (input.event == Event::tick && policy.sleepDisabled) RC_ASSERT(input.now - lastSign <= 90);
  }
}

RC_GTEST_PROP(HelperRevertPolicyModel, NeverHoldsLongerThanTwelveHoursWhileTheClockRunsForward, ()) {
  HelperRevertPolicy policy;
  double start = 0;
  for (const Input& input : anyHistory(kForwardSteps)) {
    if (apply(policy, input) == Answer::off) start = input.now;
    if (input.event == Event::tick && policy.sleepDisabled) RC_ASSERT(input.now - start < 43200);
  }
}

}  // namespace
}  // namespace brindle
