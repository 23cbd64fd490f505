// The options that every report takes, and the snapshot that they ask for.
//
// Used by the reports and the stopping commands. A recorded snapshot never shows this machine, and nothing of it can
// be stopped.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/date.h"
#include "cli/command.h"
#include "platform/host.h"

namespace brindle {

/// The rows for the table of a command's options.
inline constexpr std::string_view kRuleChoices[] = {"macos", "linux"};
inline constexpr OptionSpec kJsonOption = {.name = "--json", .help = "prints the JSON document instead of text"};
inline constexpr OptionSpec kWatchOption = {.name = "--watch",
                                            .value = "SECONDS",
                                            .help = "repeats until interrupted, every 2 seconds when not given",
                                            .valueOptional = true};
inline constexpr OptionSpec kSampleOption = {.name = "--sample", .help = "measures CPU for half a second"};
inline constexpr OptionSpec kSnapshotOption = {
    .name = "--snapshot", .value = "FILE", .help = "reports on recorded processes instead of this machine's"};
inline constexpr OptionSpec kNowOption = {
    .name = "--now", .value = "SECONDS", .help = "with --snapshot: the moment, in seconds since 1970"};
inline constexpr OptionSpec kUidOption = {.name = "--uid", .value = "N", .help = "with --snapshot: the current user"};
inline constexpr OptionSpec kRulesOption = {.name = "--rules",
                                            .value = "SYSTEM",
                                            .help = "with --snapshot: the system that was recorded",
                                            .choices = kRuleChoices};

struct ReportOptions {
  bool json = false;
  bool sample = false;
  /// Repeat after this long.
  std::optional<Seconds> watch;
  /// The file of a recorded snapshot.
  std::optional<std::string> snapshotFile;
  std::optional<Date> now;
  std::optional<std::uint32_t> uid;
  /// The rules by name; the host's own when not given.
  std::optional<std::string> rules;

  bool operator==(const ReportOptions&) const = default;
};

/// Watching more often than this only heats the machine that it watches.
inline constexpr Seconds kShortestWatch{0.2};
inline constexpr Seconds kLongestWatch{86400};
inline constexpr Seconds kUsualWatch{2};

/// What is wrong with the options, one line, or the options.
struct ReportUsage {
  ReportOptions options;
  std::string problem;
};
[[nodiscard]] ReportUsage reportOptionsOf(const Arguments& arguments);

/// Takes the snapshot that the options ask for. Fails with a line of text: what failed and why.
using ReportSnapshotResult = tl::expected<HostSnapshot, std::string>;
[[nodiscard]] ReportSnapshotResult snapshotFor(const ReportOptions& options, ListingDetail detail,
                                               const Environment& environment);

}  // namespace brindle
