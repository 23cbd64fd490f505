#include "cli/mcp_live_source.h"

#include <cerrno>

namespace brindle {
namespace {

class LiveSource : public SnapshotSource {
 public:
  Result<HostSnapshot> take(const ProtectionRules&) override { return fail(ENOSYS, "look at the processes"); }
};

}  // namespace

std::unique_ptr<SnapshotSource> liveSource(const Environment&) { return std::make_unique<LiveSource>(); }

}  // namespace brindle
