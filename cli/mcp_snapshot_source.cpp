#include "cli/mcp_snapshot_source.h"

#include <utility>

#include "cli/recorded_snapshot.h"
#include "inventory/protections.h"

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
  explicit RecordedSource(RecordedSnapshot recorded) : recorded_(std::move(recorded)) {}

  Result<HostSnapshot> take(const ProtectionRules& rules) override { return recorded_.host(rules); }

 private:
  RecordedSnapshot recorded_;
};

}  // namespace

tl::expected<std::unique_ptr<SnapshotSource>, std::string> snapshotSource(const ReportOptions& options,
                                                                          const Environment& environment) {
  if (!options.snapshotFile) return std::make_unique<MachineSource>(environment);
  auto recorded = readRecordedSnapshot(options);
  if (!recorded) return tl::make_unexpected(recorded.error());
  return std::make_unique<RecordedSource>(*std::move(recorded));
}

}  // namespace brindle
