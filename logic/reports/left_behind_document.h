// The rows and the document about what outlived the agent that started it.
//
// Built by CLIReports, written by CLIReports::jsonText; JSON keys are the field names. Plain values: safe on any
// thread.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/json_value.h"
#include "logic/reports/report_schema.h"
#include "logic/reports/report_snapshot.h"

namespace brindle {

/// A process that outlived the agent that started it.
struct LeftBehindDocument {
  std::int32_t pid = 0;
  /// The process's command line.
  std::string command;
  /// Which agent left it behind, and how that is known.
  std::string origin;
  std::uint64_t memoryBytes = 0;
  std::vector<int> ports;

  bool operator==(const LeftBehindDocument&) const = default;
};

struct GhostsDocument {
  int schema = kReportSchema;
  std::string command = "ghosts";
  std::vector<LeftBehindDocument> leftBehind;
  /// Processes whose agent has perhaps ended: counted nowhere and never proposed for stopping.
  std::vector<LeftBehindDocument> likely;

  bool operator==(const GhostsDocument&) const = default;
};

/// One row for each process, in their order.
[[nodiscard]] std::vector<LeftBehindDocument> leftBehindRows(const std::vector<LeftBehind>& processes);

[[nodiscard]] JsonObject encode(const LeftBehindDocument& row);
[[nodiscard]] JsonObject encode(const GhostsDocument& document);

}  // namespace brindle
