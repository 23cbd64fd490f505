// CPU use between two snapshots, and the text in which the first one is kept for the next run.
//
// Used by the host's snapshot taker. The text is a cache of ours: damaged lines count as not there. Pure.
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/date.h"
#include "inventory/process_facts.h"

namespace brindle {

/// Spans between two samples that give a figure, both inclusive: the tick is too coarse for shorter ones, and over
/// longer ones an average says nothing about now.
inline constexpr Seconds kShortestSample{0.5};
inline constexpr Seconds kLongestSample{600};
/// The most processes that are kept.
inline constexpr std::size_t kCpuSampleLimit = 16384;

struct CpuSample {
  /// The kernel's id of the boot; times of another one mean nothing.
  std::string boot;
  /// The boot clock, which never jumps.
  Seconds at{};
  /// Seconds of one core by pid and start stamp.
  std::map<std::pair<std::int32_t, std::int64_t>, double> seconds;

  bool operator==(const CpuSample&) const = default;
};

/// The sample of `processes` at `at`.
[[nodiscard]] CpuSample cpuSampleOf(std::span<const ProcessFacts> processes, std::string boot, Seconds at);

/// Sets cpuPercent of each process that is in both samples; all stay absent when the samples are of two boots or their
/// distance is outside kShortestSample and kLongestSample. A process that spent less than before counts as 0.
void applyCpuSamples(const CpuSample& before, const CpuSample& after, std::vector<ProcessFacts>& processes);

[[nodiscard]] std::string cpuSampleText(const CpuSample& sample);
/// An empty sample when the text is not one of cpuSampleText; lines that are damaged are left out.
[[nodiscard]] CpuSample cpuSampleFrom(std::string_view text);

}  // namespace brindle
