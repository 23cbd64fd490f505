// Arbitrary snapshots for property tests: pids collide, parents form cycles, owners and records vary.
#pragma once

#include <rapidcheck.h>

#include <vector>

#include "tests/logic/sessions/sample_processes.h"

namespace brindle {

/// From a range so small that parents, children, duplicates and cycles are common; 98 to 110 spans the smallest pid
/// of a user process.
inline rc::Gen<std::int32_t> crowdedPids() { return rc::gen::inRange<std::int32_t>(98, 122); }

inline rc::Gen<TrackedProcess> crowdedProcesses() {
  return rc::gen::exec([] {
    const bool top = *rc::gen::inRange(0, 4) == 0;
    const ProcessForest::Link link{.pid = *crowdedPids(), .ppid = top ? 1 : *crowdedPids()};
    TrackedProcess made = *rc::gen::inRange(0, 3) == 0 ? agent(link) : process(link);
    made.start = dateFromSeconds(*rc::gen::inRange(0, 4));
    made.footprint = *rc::gen::inRange<std::uint64_t>(0, 1000);
    made.ports = *rc::gen::container<std::vector<int>>(rc::gen::inRange(1, 6));
    if (*rc::gen::arbitrary<bool>()) made.cpuPercent = *rc::gen::element(0.0, 0.5, 1.0, 4.0, 5.0, 60.0);
    if (*rc::gen::inRange(0, 6) == 0) made.uid = kOtherUser;
    if (*rc::gen::inRange(0, 6) == 0) made.path = "/bin/sh";
    if (*rc::gen::inRange(0, 3) == 0) made.recordedAgentPID = *crowdedPids();
    made.recordedAgentAlive = *rc::gen::arbitrary<bool>();
    return made;
  });
}

inline rc::Gen<std::vector<TrackedProcess>> crowdedSnapshots() {
  return rc::gen::container<std::vector<TrackedProcess>>(crowdedProcesses());
}

}  // namespace brindle
