#include "helper/helper.h"

#include <string>
#include <utility>
#include <variant>

#include "logic/helper/lid_sleep_limits.h"

namespace brindle {

Helper::Helper(HelperSeams seams) : seams_(std::move(seams)), idleSince_(seams_.now()) {}

std::shared_ptr<Helper> Helper::create(HelperSeams seams) {
  return std::shared_ptr<Helper>(new Helper(std::move(seams)));
}

bool Helper::start() {
  seams_.queue.sync([this] {
    seams_.log.event("helper started, turning sleep back on");
    const PmsetCommand command = policy_.helperStarted();
    (void)seams_.sleepSwitch.run(command, RevertReason::helperStart);
  });
  timer_ = seams_.queue.repeat(LidSleepLimits::tickInterval, [weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->tick();
  });
  return timer_ != nullptr;
}

void Helper::tick() {
  const Date now = seams_.now();
  if (const auto command = policy_.tick(now)) {
    (void)seams_.sleepSwitch.run(*command, policy_.lastRevert.value_or(RevertReason::heartbeatLost));
  }
  const bool idle = !policy_.sleepDisabled && connections_.empty() && now - idleSince_ > kIdleExitDelay;
  if (idle && !seams_.exit.callsPending()) {
    seams_.log.event("idle, exiting");
    seams_.exit.exitWhenIdle();
  }
}

void Helper::accept(ConnectionId connection) {
  seams_.queue.sync([this, connection] { connections_.insert(connection); });
}

void Helper::connectionEnded(ConnectionId connection) {
  seams_.queue.async([weak = weak_from_this(), connection] {
    if (const auto self = weak.lock()) self->end(connection);
  });
}

void Helper::end(ConnectionId connection) {
  if (connections_.erase(connection) == 0) return;
  idleSince_ = seams_.now();
  if (policy_.connectionLost()) restoreSleep(RevertReason::connectionLost);
}

void Helper::setSleepDisabled(SleepRequest request, std::function<void(SleepReply)> reply) {
  seams_.queue.async([self = shared_from_this(), request, reply = std::move(reply)] { reply(self->answer(request)); });
}

void Helper::heartbeat(std::function<void(bool)> reply) {
  seams_.queue.async([self = shared_from_this(), reply = std::move(reply)] {
    self->policy_.heartbeat(self->seams_.now());
    reply(self->policy_.sleepDisabled);
  });
}

void Helper::status(std::function<void(HelperStatus)> reply) {
  seams_.queue.async([self = shared_from_this(), reply = std::move(reply)] {
    reply({.sleepDisabled = self->policy_.sleepDisabled, .remaining = self->policy_.remaining(self->seams_.now())});
  });
}

void Helper::terminate() {
  seams_.queue.sync([this] {
    seams_.log.event("SIGTERM, turning sleep back on");
    restoreSleep(RevertReason::uninstall);
    // Still on the queue: a request that waits behind this must not switch sleep off again before the process is gone.
    seams_.exit.exitAfterTermination();
  });
}

SleepReply Helper::answer(const SleepRequest& request) {
  const RequestAnswer answer = policy_.request(request.disabled, seams_.now(), request.maxDuration);
  if (std::holds_alternative<RequestRefused>(answer)) {
    return {.ok = false, .message = std::string(HelperReplyText::kMaxDurationReached)};
  }
  if (const auto* accepted = std::get_if<RequestAcceptedWithCommand>(&answer)) return carryOut(accepted->command);
  const auto text = request.disabled ? HelperReplyText::kSleepAlreadyDisabled : HelperReplyText::kSleepAlreadyOn;
  return {.ok = true, .message = std::string(text)};
}

SleepReply Helper::carryOut(PmsetCommand command) {
  const bool disables = disablesSleep(command);
  const auto reason = disables ? std::nullopt : std::optional(RevertReason::turnedOff);
  if (seams_.sleepSwitch.run(command, reason)) {
    return {.ok = true, .message = std::string(disables ? HelperReplyText::kSleepDisabled : HelperReplyText::kSleepOn)};
  }
  // A hold that never came about must not be reported, nor refuse the next request as a second one.
  if (disables) policy_.clearDisabled();
  return {.ok = false, .message = HelperReplyText::failed(seams_.sleepSwitch.name())};
}

void Helper::restoreSleep(RevertReason reason) {
  // Nobody waits for the outcome: the switch has logged it, and the next start switches sleep back on anyway.
  (void)seams_.sleepSwitch.run(PmsetCommand::restoreSleep, reason);
}

}  // namespace brindle
