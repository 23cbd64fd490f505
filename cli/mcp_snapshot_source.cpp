#include "cli/mcp_snapshot_source.h"

#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "base/file.h"
#include "base/json_reader.h"
#include "inventory/protections.h"
#include "platform/clock.h"

namespace brindle {
namespace {

class MachineSource : public SnapshotSource {
 public:
  explicit MachineSource(Environment environment) : environment_(std::move(environment)) {}

  Result<HostSnapshot> take(const ProtectionRules& rules) override {
    Result<HostSnapshot> snapshot = lookAtHost(environment_, HostQuestion{.detail = ListingDetail::everything});
    // A failure costs evidence about what is left behind later, not this answer.
    if (snapshot) (void)rememberOwners(environment_, *snapshot).has_value();
    if (snapshot && snapshot->protectionRules != rules) {
      snapshot->protectionRules = rules;
      snapshot->protections = protectionReasons(*snapshot);
    }
    return snapshot;
  }

 private:
  Environment environment_;
};

class RecordedSource : public SnapshotSource {
 public:
  struct Circumstances {
    Date now{};
    std::uint32_t currentUser = 0;
    const SystemProcessRules& rules;
  };
  RecordedSource(const Circumstances& circumstances, std::vector<TrackedProcess> processes)
      : circumstances_(circumstances), processes_(std::move(processes)) {}

  Result<HostSnapshot> take(const ProtectionRules& rules) override {
    return snapshotOf(processes_, SnapshotContext{.now = circumstances_.now,
                                                  .currentUser = circumstances_.currentUser,
                                                  .rules = circumstances_.rules,
                                                  .protections = rules});
  }

 private:
  Circumstances circumstances_;
  std::vector<TrackedProcess> processes_;
};

const SystemProcessRules& rulesOf(const ReportOptions& options) {
  if (!options.rules) return hostRules();
  return *options.rules == "macos" ? SystemProcessRules::forMacOS() : SystemProcessRules::forLinux();
}

Result<std::vector<TrackedProcess>> recordedProcesses(const std::string& file) {
  // The person named this file, so a link to it is followed, unlike in the shared folder.
  std::error_code unresolved;
  const std::filesystem::path resolved = std::filesystem::canonical(file, unresolved);
  if (unresolved) return fail(unresolved.value(), "read " + file);
  const Result<std::string> text = readFile(resolved.string(), kJsonByteLimit);
  if (!text) return tl::make_unexpected(text.error());
  const std::optional<JsonValue> document = parseJson(*text);
  auto processes = document ? decodeSnapshot(*document) : std::nullopt;
  if (!processes) return fail(EINVAL, "read " + file + " as a snapshot of processes");
  return *std::move(processes);
}

}  // namespace

Result<std::unique_ptr<SnapshotSource>> snapshotSource(const ReportOptions& options, const Environment& environment) {
  if (!options.snapshotFile) return std::make_unique<MachineSource>(environment);
  auto processes = recordedProcesses(*options.snapshotFile);
  if (!processes) return tl::make_unexpected(processes.error());
  const RecordedSource::Circumstances circumstances{.now = options.now.value_or(wallClockNow()),
                                                    .currentUser = options.uid.value_or(::geteuid()),
                                                    .rules = rulesOf(options)};
  return std::make_unique<RecordedSource>(circumstances, *std::move(processes));
}

}  // namespace brindle
