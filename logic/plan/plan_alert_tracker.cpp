#include "logic/plan/plan_alert_tracker.h"

#include <cmath>

#include "base/json_record.h"
#include "base/whole_number.h"

namespace brindle {
namespace {

/// The reset date is part of the key, so that each new window gets a key of its own.
std::string alertKey(const std::string& account, PlanWindowKind kind, std::optional<Date> resets) {
  const auto minutes = resets ? wholeNumber(secondsSince1970(*resets) / 60) : 0;
  std::string key = account;
  key += '|';
  key += textOf(kind);
  key += '|';
  key += std::to_string(minutes);
  return key;
}

}  // namespace

bool PlanAlertTracker::shouldAlert(const std::string& account, PlanWindowKind kind, std::optional<Date> resets,
                                   double used, Date now) {
  std::erase_if(sent, [now](const auto& entry) { return now - entry.second >= kRetention; });
  if (!(used >= kThreshold)) return false;
  return sent.emplace(alertKey(account, kind, resets), now).second;
}

std::string PlanAlertTracker::alertText(std::string_view name, double used, PlanWindowKind kind) {
  std::string text(name);
  text += " at " + std::to_string(wholeNumber(std::floor(used))) + "%";
  switch (kind) {
    case PlanWindowKind::session:
      break;
    case PlanWindowKind::week:
      text += " this week";
      break;
  }
  return text;
}

JsonObject encode(const PlanAlertTracker& tracker) {
  JsonObject sent;
  for (const auto& [key, date] : tracker.sent) sent.append(key, secondsSince1970(date));
  JsonObject object;
  object.append("sent", std::move(sent));
  return object;
}

std::optional<PlanAlertTracker> decodePlanAlertTracker(const JsonObject& object) {
  const JsonObject* sent = objectMember(object, "sent");
  if (sent == nullptr) return std::nullopt;
  PlanAlertTracker tracker;
  for (const JsonMember& member : sent->members()) {
    const JsonNumber* number = member.value.number();
    const auto seconds = number != nullptr ? number->real() : std::nullopt;
    if (!seconds) return std::nullopt;
    tracker.sent.emplace(member.key, dateFromSeconds(*seconds));
  }
  return tracker;
}

}  // namespace brindle
