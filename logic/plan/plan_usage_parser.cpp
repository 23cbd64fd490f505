#include "logic/plan/plan_usage_parser.h"

#include <algorithm>
#include <cstdint>

#include "base/iso8601.h"
#include "base/json_reader.h"
#include "base/json_record.h"
#include "base/whole_number.h"

namespace brindle::PlanUsageParser {
namespace {

constexpr std::int64_t kMinute = 60;
constexpr std::int64_t kHour = 3600;
constexpr std::int64_t kDay = 86400;

std::optional<Date> resetDate(const JsonObject& window) {
  const auto text = stringMember(window, "resets_at");
  if (!text) return std::nullopt;
  const auto date = readIso8601WithFraction(*text);
  return date ? date : readIso8601(*text);
}

std::optional<Window> parseWindow(const JsonObject& document, std::string_view key) {
  const JsonObject* window = objectMember(document, key);
  if (window == nullptr) return std::nullopt;
  const auto used = realMember(*window, "utilization");
  if (!used) return std::nullopt;
  return Window{std::max(std::min(*used, 100.0), 0.0), resetDate(*window)};
}

}  // namespace

Windows parse(std::string_view data) {
  const auto document = parseJson(data);
  const JsonObject* object = document ? document->object() : nullptr;
  if (object == nullptr) return {};
  return {parseWindow(*object, "five_hour"), parseWindow(*object, "seven_day")};
}

std::optional<std::string> resetText(std::optional<Date> resets, Date now) {
  if (!resets) return std::nullopt;
  const std::int64_t left = wholeNumber((*resets - now).count());
  if (left < 1) return "Resets now";
  if (left >= kDay) {
    return "Resets in " + std::to_string(left / kDay) + "d " + std::to_string(left % kDay / kHour) + "h";
  }
  const std::string minutes = std::to_string(left % kHour / kMinute);
  if (left < kHour) return "Resets in " + minutes + "m";
  return "Resets in " + std::to_string(left / kHour) + "h " + (minutes.size() < 2 ? "0" : "") + minutes + "m";
}

}  // namespace brindle::PlanUsageParser
