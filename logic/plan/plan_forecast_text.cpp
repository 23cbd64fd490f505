#include "logic/plan/plan_forecast_text.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "base/whole_number.h"

namespace brindle::PlanForecast {
namespace {

struct Replacement {
  std::string_view from;
  std::string_view to;
};

void replaceAll(std::string& text, Replacement what) {
  for (std::size_t at = text.find(what.from); at != std::string::npos; at = text.find(what.from, at + what.to.size())) {
    text.replace(at, what.from.size(), what.to);
  }
}

struct Sentence {
  std::optional<Date> resets;
  const Reader& reader;

  std::optional<std::string> operator()(const RunsOut& runsOut) const {
    std::string sentence = "At this rate you hit 100% at " + dateText(runsOut.emptyAt, reader);
    if (resets) {
      if (const auto span = spanText(*resets - runsOut.emptyAt)) sentence += ", " + *span + " before the reset";
    }
    return sentence + ".";
  }
  std::optional<std::string> operator()(const Unknown&) const { return std::nullopt; }
  std::optional<std::string> operator()(const OnPace&) const {
    return "On pace: at this rate it lasts until the reset.";
  }
  std::optional<std::string> operator()(const Full&) const {
    if (!resets) return "Used up.";
    return "Used up. It resets at " + dateText(*resets, reader) + ".";
  }
};

}  // namespace

std::string dateText(Date date, const Reader& reader) {
  const bool laterDay = reader.timeZone.localDay(date) > reader.timeZone.localDay(reader.now);
  std::string text = laterDay ? reader.times.weekdayAndTime(date) : reader.times.timeOfDay(date);
  replaceAll(text, {"\u202F", " "});
  replaceAll(text, {"AM", "am"});
  replaceAll(text, {"PM", "pm"});
  return text;
}

std::optional<std::string> spanText(Seconds span) {
  constexpr std::int64_t kHour = 60;
  constexpr std::int64_t kDay = 1440;
  const std::int64_t minutes = wholeNumber(span.count() / 60);
  if (minutes < 1) return std::nullopt;
  if (minutes >= kDay) return std::to_string(minutes / kDay) + " d";
  if (minutes >= kHour) return std::to_string(minutes / kHour) + " h";
  return std::to_string(minutes) + " min";
}

std::optional<std::string> text(const Outcome& outcome, std::optional<Date> resets, const Reader& reader) {
  return std::visit(Sentence{resets, reader}, outcome);
}

}  // namespace brindle::PlanForecast
