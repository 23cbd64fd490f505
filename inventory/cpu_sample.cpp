#include "inventory/cpu_sample.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "base/lines.h"
#include "base/number_text.h"

namespace brindle {
namespace {

constexpr std::string_view kHead = "brindle-cpu-1 ";

}  // namespace

CpuSample cpuSampleOf(std::span<const ProcessFacts> processes, std::string boot, Seconds at) {
  CpuSample sample{std::move(boot), at, {}};
  for (const ProcessFacts& facts : processes) {
    if (sample.seconds.size() == kCpuSampleLimit) break;
    sample.seconds.try_emplace({facts.pid, facts.startTime}, facts.cpuSeconds);
  }
  return sample;
}

void applyCpuSamples(const CpuSample& before, const CpuSample& after, std::vector<ProcessFacts>& processes) {
  const Seconds span = after.at - before.at;
  // Written so that a span that is not a number is refused too.
  if (before.boot != after.boot || !(span >= kShortestSample && span <= kLongestSample)) return;
  for (ProcessFacts& facts : processes) {
    const auto earlier = before.seconds.find({facts.pid, facts.startTime});
    const auto later = after.seconds.find({facts.pid, facts.startTime});
    if (earlier == before.seconds.end() || later == after.seconds.end()) continue;
    facts.cpuPercent = std::max(0.0, later->second - earlier->second) / span.count() * 100;
  }
}

std::string cpuSampleText(const CpuSample& sample) {
  std::string text = std::string(kHead) + sample.boot + " " + doubleText(sample.at.count()) + "\n";
  for (const auto& [process, seconds] : sample.seconds) {
    text += std::to_string(process.first) + " " + std::to_string(process.second) + " " + doubleText(seconds) + "\n";
  }
  return text;
}

CpuSample cpuSampleFrom(std::string_view text) {
  std::string_view head = takePiece(text, '\n');
  if (!head.starts_with(kHead)) return {};
  head.remove_prefix(kHead.size());
  CpuSample sample;
  sample.boot = takePiece(head, ' ');
  const auto at = doubleFromText(head);
  if (!at) return {};
  sample.at = Seconds{*at};
  while (!text.empty() && sample.seconds.size() < kCpuSampleLimit) {
    std::string_view line = takePiece(text, '\n');
    const auto pid = integerFromText(takePiece(line, ' '));
    const auto start = integerFromText(takePiece(line, ' '));
    const auto seconds = doubleFromText(line);
    if (!pid || !start || !seconds || *pid < 1 || *pid > std::numeric_limits<std::int32_t>::max()) continue;
    sample.seconds.try_emplace({static_cast<std::int32_t>(*pid), *start}, *seconds);
  }
  return sample;
}

}  // namespace brindle
