#include "cli/recorded_snapshot.h"

#include <unistd.h>

#include "base/json_reader.h"
#include "cli/named_file.h"
#include "platform/clock.h"

namespace brindle {
namespace {

const SystemProcessRules& rulesOf(const ReportOptions& options) {
  if (!options.rules) return hostRules();
  return *options.rules == "macos" ? SystemProcessRules::forMacOS() : SystemProcessRules::forLinux();
}

}  // namespace

HostSnapshot RecordedSnapshot::host(const ProtectionRules& protections) const {
  return snapshotOf(processes, SnapshotContext{now, currentUser, rules, protections});
}

tl::expected<RecordedSnapshot, std::string> readRecordedSnapshot(const ReportOptions& options) {
  const std::string& file = *options.snapshotFile;
  const Result<std::string> text = readNamedFile(file, kJsonByteLimit);
  if (!text) return tl::make_unexpected(text.error().message());
  const auto document = parseJson(*text);
  auto processes = document ? decodeSnapshot(*document) : std::nullopt;
  if (!processes) return tl::make_unexpected("read " + file + ": not a snapshot of processes");
  return RecordedSnapshot{.processes = *std::move(processes),
                          .now = options.now.value_or(wallClockNow()),
                          .currentUser = options.uid.value_or(::geteuid()),
                          .rules = rulesOf(options)};
}

}  // namespace brindle
