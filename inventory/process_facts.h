// What a process source has seen of one process, before anything is concluded from it.
//
// Filled in by the process sources of platform/ and by tests; read by every rule of this folder. Everything in it
// comes from programs that nobody vouches for: names may hold any bytes, a parent may be missing or be itself.
// Plain values without shared state: safe on any thread, one thread a value.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/date.h"

namespace brindle {

/// One environment variable that the rules ask for by name; no other is ever kept, since environments hold secrets.
struct NamedVariable {
  std::string name;
  std::string value;

  bool operator==(const NamedVariable&) const = default;
};

struct ProcessFacts {
  std::int32_t pid = 0;
  std::int32_t ppid = 0;
  std::uint32_t uid = 0;
  /// The kernel's name: at most 15 bytes on Linux, and whatever the program has set it to.
  std::string name;
  /// The executable, without the mark of a deleted file; absent where it may not be read.
  std::optional<std::string> path;
  /// One entry an argument; a program that has set its title has one, with blanks in it.
  std::vector<std::string> arguments;
  std::optional<std::string> cwd;
  Date start{};
  /// The kernel's start stamp: ticks since boot on Linux, microseconds since 1970 on macOS. Only compared with
  /// others of the same machine; unlike `start` it never moves when the clock is set.
  std::int64_t startTime = 0;
  /// Bytes.
  std::uint64_t footprint = 0;
  /// Seconds of one core spent since the start.
  double cpuSeconds = 0;
  /// Percent of one core; absent when not sampled.
  std::optional<double> cpuPercent;
  /// TCP ports it listens on, ascending, each once.
  std::vector<int> ports;
  /// Whether one of the ports is reachable from other machines.
  bool reachable = false;
  /// It has a controlling terminal.
  bool hasTerminal = false;
  /// Whether something else than its parent started it, where the system remembers that (macOS); absent elsewhere.
  std::optional<bool> adopted;
  /// Established connections to its ports.
  int clients = 0;
  /// It lives in a process namespace of its own, as in a container: pids in its variables are not those seen here.
  bool otherPids = false;
  /// Those of namedVariables() that its environment holds; empty also where it may not be read.
  std::vector<NamedVariable> variables;
  /// False for a process of which only the kernel's own table was read.
  bool inspected = true;

  /// The value of the variable; none when it is not set.
  [[nodiscard]] std::optional<std::string_view> variable(std::string_view variableName) const {
    for (const NamedVariable& each : variables) {
      if (each.name == variableName) return each.value;
    }
    return std::nullopt;
  }

  bool operator==(const ProcessFacts&) const = default;
};

}  // namespace brindle
