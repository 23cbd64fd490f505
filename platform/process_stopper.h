// Ends processes: gently first, the roots of their trees before the rest, and by force only when that was asked for.
//
// Used by the stopping commands after the person has agreed. Never signals a group, since servers share the group of
// the agent that started them. Blocks while it waits.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/date.h"

namespace brindle {

struct StopTarget {
  std::int32_t pid = 0;
  /// A process with the pid but another stamp is not the one that is meant, and is not touched.
  std::int64_t startTime = 0;
  /// Signalled in the first round. The others are given the chance to follow it.
  bool first = false;

  bool operator==(const StopTarget&) const = default;
};

enum class StopFate {
  /// It has ended.
  stopped,
  /// It had ended before it was signalled.
  gone,
  /// It has been asked to end, and runs.
  running,
  /// It could not be signalled: it may not be, or there were too many for the limit of open descriptors.
  refused,
};

struct StopManner {
  /// How long a round waits for the processes to end.
  Seconds patience{3};
  /// A last round ends what is left without asking it.
  bool force = false;
};

/// The fates of `targets` in their order. Never touches the calling process. May raise this process's limit of open
/// descriptors up to what it is allowed.
[[nodiscard]] std::vector<StopFate> stopProcesses(const std::vector<StopTarget>& targets, const StopManner& manner);

}  // namespace brindle
