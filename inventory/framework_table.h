// The development servers that are known, and by which commands. Data; the rules are in framework_recognition.h.
//
// Observed as running trees on Linux, or read in the programs' documentation. Ports are not in it: the socket is
// trusted over the flags and the usual numbers.
#pragma once

#include <span>
#include <string_view>

namespace brindle {

struct FrameworkRow {
  /// As shown to people.
  std::string_view name;
  /// Base names of executable, first argument, script or module.
  std::span<const std::string_view> programs;
  /// One of these must be among the arguments; empty: none needed.
  std::span<const std::string_view> needs;
  /// None of these may be among the arguments: the same program also builds and checks.
  std::span<const std::string_view> refuses;
};

[[nodiscard]] std::span<const FrameworkRow> frameworkTable();

}  // namespace brindle
