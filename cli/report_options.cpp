#include "cli/report_options.h"

#include <limits>
#include <utility>

#include "base/number_text.h"
#include "cli/recorded_snapshot.h"
#include "cli/usage_text.h"

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
    if (!options.watch) {
      return expectedText({.subject = "--watch", .expected = "seconds from 0.2 to 86400", .got = *text});
    }
  } else if (arguments.has("--watch")) {
    options.watch = kUsualWatch;
  }
  if (const auto text = arguments.value("--now")) {
    const auto number = doubleFromText(*text);
    if (!number || !(*number >= -kFarthestStart && *number <= kFarthestStart)) {
      return expectedText({.subject = "--now", .expected = "seconds since 1970", .got = *text});
    }
    options.now = dateFromSeconds(*number);
  }
  if (const auto text = arguments.value("--uid")) {
    const auto number = integerFromText(*text);
    if (!number || *number < 0 || *number > std::numeric_limits<std::uint32_t>::max()) {
      return expectedText({.subject = "--uid", .expected = "a user id", .got = *text});
    }
    options.uid = static_cast<std::uint32_t>(*number);
  }
  return {};
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
  if (options.snapshotFile) {
    const auto recorded = readRecordedSnapshot(options);
    if (!recorded) return tl::make_unexpected(recorded.error());
    return recorded->host(protectionRulesOf(environment));
  }
  HostQuestion question{.detail = detail};
  if (options.sample) question.sampleFor = kShortestSample;
  auto snapshot = lookAtHost(environment, question);
  if (!snapshot) return tl::make_unexpected(snapshot.error().message());
  return std::move(*snapshot);
}

}  // namespace brindle
