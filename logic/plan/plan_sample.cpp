#include "logic/plan/plan_sample.h"

#include <cstdint>

#include "base/json_record.h"

namespace brindle {

JsonObject encode(const PlanSample& sample) {
  JsonObject object;
  object.append("at", secondsSince1970(sample.at));
  object.append("used", sample.used);
  return object;
}

std::optional<PlanSample> decodePlanSample(const JsonObject& object) {
  const auto at = secondsDateMember(object, "at");
  const auto used = realMember(object, "used");
  if (!at || !used) return std::nullopt;
  return PlanSample{*at, *used};
}

namespace PlanSampleLog {

std::vector<PlanSample> appending(const PlanSample& sample, std::vector<PlanSample> samples, std::optional<Date> resets,
                                  PlanWindowKind kind) {
  if (resets) {
    const Date start = *resets - length(kind);
    std::erase_if(samples, [start](const PlanSample& old) { return old.at < start; });
  }
  if (!samples.empty() && sample.used + kNoise < samples.back().used) samples.clear();
  samples.push_back(sample);
  if (samples.size() > kLimit) {
    samples.erase(samples.begin(), samples.end() - static_cast<std::ptrdiff_t>(kLimit));
  }
  return samples;
}

}  // namespace PlanSampleLog

}  // namespace brindle
