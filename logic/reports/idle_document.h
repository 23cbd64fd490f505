// The document of the idle report: what could be stopped, and what is old enough but kept.
//
// Built by IdleStop, written by CLIReports::jsonText; JSON keys are the field names. Plain values: safe on any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/json_value.h"
#include "logic/reports/report_schema.h"

namespace brindle {

struct IdleRow {
  std::int32_t pid = 0;
  std::vector<int> ports;
  std::string name;
  std::optional<std::string> project;
  std::int64_t uptimeSeconds = 0;
  std::uint64_t memoryBytes = 0;
  /// Why the process is kept; absent when it may be stopped. The key is "protected".
  std::optional<std::string> protectedReason;

  bool operator==(const IdleRow&) const = default;
};

struct IdleDocument {
  int schema = kReportSchema;
  std::string command = "idle";
  /// There is something to stop.
  bool idle = false;
  /// The age from which a process was considered.
  std::int64_t minimumAgeSeconds = 0;
  std::vector<IdleRow> stop;
  /// Old enough, but protected.
  std::vector<IdleRow> skipped;
  std::string summary;

  bool operator==(const IdleDocument&) const = default;
};

/// Absent fields have no key and are never written as null.
[[nodiscard]] JsonObject encode(const IdleDocument& document);

}  // namespace brindle
