#include "logic/events/agent_notify_copy.h"

#include <cmath>

#include "base/whole_number.h"
#include "logic/sessions/byte_text.h"

namespace brindle::AgentNotifyCopy {
namespace {

std::string after(std::optional<std::string_view> context, const std::string& main) {
  return context ? std::string(*context) + " \u00B7 " + main : main;
}

std::string sentence(std::string_view text) {
  std::string result(text);
  if (!result.ends_with('.')) result += '.';
  return result;
}

std::string with(std::string_view agent, std::string_view rest) {
  std::string title(agent);
  title += rest;
  return title;
}

}  // namespace

std::string duration(Seconds span) {
  const std::int64_t minutes = wholeNumber(std::round(span.count() / 60));
  if (minutes < 1) return "under a minute";
  if (minutes < 60) return std::to_string(minutes) + " min";
  const std::string hours = std::to_string(minutes / 60) + " h";
  const std::int64_t rest = minutes % 60;
  return rest == 0 ? hours : hours + " " + std::to_string(rest) + " min";
}

std::string finishedTitle(std::string_view agent) { return with(agent, " finished"); }
std::string_view sessionEndedTitle() { return "Session finished"; }
std::string approvalTitle(std::string_view agent) { return with(agent, " needs your approval"); }
std::string waitingTitle(std::string_view agent) { return with(agent, " is waiting for you"); }
std::string idleGuessTitle(std::string_view agent) { return with(agent, " looks done (a guess)"); }

std::string approvalBody(Words words, Seconds waited) {
  const bool hasMessage = words.message && !words.message->empty();
  const std::string asked = hasMessage ? sentence(*words.message) : "Waiting on a prompt.";
  return after(words.context, asked + " Waiting " + duration(waited) + ".");
}

std::string waitingBody(Words words) {
  return after(words.context, words.message ? sentence(*words.message) : "Waiting for your input.");
}

std::string yourTurnBody(std::optional<std::string_view> context, std::optional<Seconds> open) {
  std::string main = "Your turn.";
  if (open) main += " Session open " + duration(*open) + ".";
  return after(context, main);
}

std::string sessionEndedBody(std::optional<std::string_view> context, Leftovers left, Seconds ran) {
  std::string main = duration(ran);
  if (left.processes < 1) {
    main += ", nothing left behind";
  } else {
    main += ", " + std::to_string(left.processes) + " process" + (left.processes == 1 ? "" : "es") + " left behind";
    if (left.bytes != 0) main += " (" + ByteText::text(left.bytes) + ")";
  }
  return after(context, main + ".");
}

std::string idleGuessBody(std::optional<std::string_view> context, Seconds quiet) {
  return after(context, "Quiet for " + duration(quiet) +
                            ", so it may be finished or waiting on you. Install hooks for an exact alert.");
}

}  // namespace brindle::AgentNotifyCopy
