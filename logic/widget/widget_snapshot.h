// The small summary of the application's state that its widget and the status line show.
//
// Made by the application, written and read by the widget feed; the widget never looks at processes itself. Plain
// values: safe on any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/date.h"
#include "base/json_value.h"

namespace brindle {

struct WidgetSnapshot {
  /// Usage of the user's AI plan. Dates are seconds since 1970 in JSON.
  struct Plan {
    /// The plan account's display name.
    std::string account;
    /// The share of the usage window used, as the forecast gives it.
    double used = 0;
    /// When the usage window resets.
    std::optional<Date> resets;
    /// When the forecast says the allowance runs out.
    std::optional<Date> emptyAt;
    /// The forecast says the allowance lasts to the reset.
    bool onPace = false;

    bool operator==(const Plan&) const = default;
  };

  /// When the snapshot was taken; in JSON seconds since 1970.
  Date takenAt{};
  /// Processes left behind, the memory they hold in bytes, and their ports.
  std::int64_t ghosts = 0;
  std::uint64_t ghostBytes = 0;
  std::vector<std::uint16_t> ghostPorts;
  /// Live agent sessions, and the agent's name of each.
  std::int64_t agents = 0;
  std::vector<std::string> agentNames;
  /// Sessions whose activity is working.
  std::int64_t working = 0;
  /// The machine's memory in bytes.
  std::uint64_t memoryUsed = 0;
  std::uint64_t memoryTotal = 0;
  /// Absent when plan tracking is off.
  std::optional<Plan> plan;
  /// What stops freed this week: bytes and processes.
  std::uint64_t freedThisWeek = 0;
  std::int64_t freedProcesses = 0;

  bool operator==(const WidgetSnapshot&) const = default;
};

/// All fields in declaration order under their names. Absent ones have no key; nor have numbers that are not finite,
/// for which JSON has no text: without such a required one the document does not read back.
[[nodiscard]] JsonObject encode(const WidgetSnapshot& snapshot);

/// The record, or none when a field that is not optional is missing, of another type or out of range, in the plan
/// too. An optional field with such a value counts as absent; unknown keys are ignored.
[[nodiscard]] std::optional<WidgetSnapshot> decodeWidgetSnapshot(const JsonObject& object);

}  // namespace brindle
