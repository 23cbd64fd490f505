// The text of /proc/PID/stat as a value.
//
// Used by the Linux process source; portable and pure, so that it is tested and fuzzed everywhere.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace brindle {

struct ProcStat {
  std::int32_t pid = 0;
  /// As the kernel has it: up to 15 bytes of any value, blanks, parentheses and line ends included.
  std::string name;
  /// 'R', 'S', 'Z' and so on.
  char state = ' ';
  std::int32_t ppid = 0;
  std::int32_t group = 0;
  std::int32_t session = 0;
  /// The controlling terminal's device number; 0 is none.
  std::int32_t terminal = 0;
  bool kernelThread = false;
  /// Ticks spent in user and kernel mode.
  std::uint64_t cpuTicks = 0;
  /// Ticks from boot to the start.
  std::int64_t startTicks = 0;

  bool operator==(const ProcStat&) const = default;
};

/// None when the text is not one whole line of the kernel's, or a number does not fit. The name ends at the last ")"
/// of the text, since it may hold some itself.
[[nodiscard]] std::optional<ProcStat> parseProcStat(std::string_view text);

}  // namespace brindle
