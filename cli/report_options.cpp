#include "cli/report_options.h"

#include <unistd.h>

#include <filesystem>
#include <limits>
#include <system_error>
#include <utility>

#include "base/file.h"
#include "base/json_reader.h"
#include "base/number_text.h"
#include "platform/clock.h"

namespace brindle {
namespace {

constexpr std::string_view kRecordedOnly[] = {"--now", "--uid", "--rules"};

std::optional<Seconds> watchSpan(const std::string& text) {
  const auto number = doubleFromText(text);
  if (!number || !(Seconds{*number} >= kShortestWatch && Seconds{*number} <= kLongestWatch)) return std::nullopt;
  return Seconds{*number};
}

std::string readNumbers(const Arguments& arguments, ReportOptions& options) {
  if (const auto text = arguments.value("--watch")) {
    options.watch = watchSpan(*text);
    if (!options.watch) return "--watch " + *text + ": expected seconds from 0.2 to 86400";
  } else if (arguments.has("--watch")) {
    options.watch = kUsualWatch;
  }
  if (const auto text = arguments.value("--now")) {
    const auto number = doubleFromText(*text);
    if (!number || !(*number >= -kFarthestStart && *number <= kFarthestStart)) {
      return "--now " + *text + ": expected seconds since 1970";
    }
    options.now = dateFromSeconds(*number);
  }
  if (const auto text = arguments.value("--uid")) {
    const auto number = integerFromText(*text);
    if (!number || *number < 0 || *number > std::numeric_limits<std::uint32_t>::max()) {
      return "--uid " + *text + ": expected a user id";
    }
    options.uid = static_cast<std::uint32_t>(*number);
  }
  return {};
}

ReportSnapshotResult recorded(const ReportOptions& options, const Environment& environment) {
  // A file that the user names may be a link; only the program's own files never are.
  std::error_code missing;
  const auto resolved = std::filesystem::canonical(*options.snapshotFile, missing);
  const std::string path = missing ? *options.snapshotFile : resolved.string();
  const auto text = readFile(path, kJsonByteLimit);
  if (!text) return tl::make_unexpected(text.error().message());
  const auto document = parseJson(*text);
  auto processes = document ? decodeSnapshot(*document) : std::nullopt;
  if (!processes) return tl::make_unexpected("read " + path + ": not a snapshot of processes");
  const SystemProcessRules* rules = &hostRules();
  if (options.rules) {
    rules = *options.rules == "macos" ? &SystemProcessRules::forMacOS() : &SystemProcessRules::forLinux();
  }
  const ProtectionRules protections = protectionRulesOf(environment);
  return snapshotOf(std::move(*processes), SnapshotContext{options.now.value_or(wallClockNow()),
                                                           options.uid.value_or(::geteuid()), *rules, protections});
}

}  // namespace

ReportUsage reportOptionsOf(const Arguments& arguments) {
  ReportUsage usage;
  usage.options.json = arguments.has("--json");
  usage.options.sample = arguments.has("--sample");
  usage.options.snapshotFile = arguments.value("--snapshot");
  usage.options.rules = arguments.value("--rules");
  usage.problem = readNumbers(arguments, usage.options);
  if (!usage.problem.empty()) return usage;
  for (const std::string_view option : kRecordedOnly) {
    if (arguments.has(option) && !usage.options.snapshotFile) {
      usage.problem = std::string(option) + " goes with --snapshot only";
    }
  }
  if (usage.options.snapshotFile && usage.options.watch)
    usage.problem = "a recorded snapshot does not change: no --watch";
  if (usage.options.snapshotFile && usage.options.sample)
    usage.problem = "a recorded snapshot has its CPU: no --sample";
  return usage;
}

ReportSnapshotResult snapshotFor(const ReportOptions& options, ListingDetail detail, const Environment& environment) {
  if (options.snapshotFile) return recorded(options, environment);
  HostQuestion question{.detail = detail};
  if (options.sample) question.sampleFor = kShortestSample;
  auto snapshot = lookAtHost(environment, question);
  if (!snapshot) return tl::make_unexpected(snapshot.error().message());
  return std::move(*snapshot);
}

}  // namespace brindle
