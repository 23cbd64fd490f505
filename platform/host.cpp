#include "platform/host.h"

#include <sys/stat.h>
#include <unistd.h>

#include <map>
#include <set>
#include <thread>
#include <utility>

#include "base/file.h"
#include "inventory/agent_recognition.h"
#include "inventory/cpu_sample.h"
#include "platform/clock.h"
#include "platform/directories.h"
#include "platform/frontmost.h"
#include "platform/ownership_store.h"
#include "platform/settings.h"
#include "system/boot_clock.h"

namespace brindle {
namespace {

constexpr std::size_t kSampleFileLimit = std::size_t{2} << 20;

std::optional<std::string> manifestText(const std::string& path) {
  struct stat about = {};
  if (::stat(path.c_str(), &about) != 0) return std::nullopt;
  if (!S_ISREG(about.st_mode)) return std::string();
  return readFile(path, kManifestByteLimit).value_or("");
}

/// The sample of this run, and CPU figures from it and the one before.
void sampleCpu(const Environment& environment, const std::string& boot, std::vector<ProcessFacts>& processes) {
  const auto folder = stateFolder(environment);
  if (!folder) return;
  const std::string path = *folder + "/cpu-times";
  const CpuSample now = cpuSampleOf(processes, boot, bootClockNow());
  const CpuSample before = cpuSampleFrom(readFile(path, kSampleFileLimit).value_or(""));
  applyCpuSamples(before, now, processes);
  // Two runs within the shortest span would leave the second without a figure, and push out the sample of the first.
  const Seconds since = now.at - before.at;
  if (before.boot == boot && since >= Seconds{0} && since < Seconds{1}) return;
  // Without the file the next run has no figures; that is all that is lost.
  if (ensureFolder(*folder)) (void)replaceFile(path, cpuSampleText(now)).has_value();
}

Outcome sampleTwice(const ListingQuestion& question, Seconds wait, const std::string& boot, ProcessListing& listing) {
  const CpuSample before = cpuSampleOf(listing.processes, boot, bootClockNow());
  std::this_thread::sleep_for(wait);
  auto again = listProcesses(question);
  if (!again) return tl::make_unexpected(again.error());
  listing = std::move(*again);
  applyCpuSamples(before, cpuSampleOf(listing.processes, boot, bootClockNow()), listing.processes);
  return {};
}

/// The agents that have started this process from outside of what it sees, as from outside of a sandbox with pids of
/// its own. They run, and everything in the sandbox has their variables and none of their processes above it.
std::vector<AgentKind> agentsOutOfSight(const Environment& environment) {
  if (showsWholeMachine()) return {};
  ProcessFacts self;
  for (const std::string_view name : namedVariables()) {
    if (auto value = environment(std::string(name))) self.variables.push_back({std::string(name), std::move(*value)});
  }
  std::vector<AgentKind> kinds = agentsNamedByVariables(self);
  if (!kinds.empty() && nearestAgent(processChain(static_cast<std::int32_t>(::getpid())))) kinds.clear();
  return kinds;
}

}  // namespace

ProtectionRules protectionRulesOf(const Environment& environment) {
  return protectionRulesFrom(JsonValue(settingsOf(environment).document));
}

Result<HostSnapshot> lookAtHost(const Environment& environment, const HostQuestion& question) {
  const std::uint32_t user = ::geteuid();
  const std::string boot = bootId();
  std::vector<OwnershipRecord> records;
  if (const auto folder = stateFolder(environment)) records = OwnershipStore(*folder).records(boot);
  ListingQuestion listingQuestion{.currentUser = user, .detail = question.detail};
  for (const OwnershipRecord& record : records) listingQuestion.recorded.insert({record.pid, record.startTime});
  auto listing = listProcesses(listingQuestion);
  if (!listing) return tl::make_unexpected(listing.error());
  if (question.sampleFor) {
    if (auto sampled = sampleTwice(listingQuestion, *question.sampleFor, boot, *listing); !sampled) {
      return tl::make_unexpected(sampled.error());
    }
  } else if (question.detail != ListingDetail::listeners) {
    sampleCpu(environment, boot, listing->processes);
  }
  ProjectFinder projects(homeFolder(environment).value_or(""), manifestText);
  const ProtectionRules protections = protectionRulesOf(environment);
  // Only plans and what is told of protections need it, and those look at everything.
  const auto frontmost = question.detail == ListingDetail::everything ? frontmostApplication() : std::nullopt;
  const std::vector<AgentKind> outOfSight = agentsOutOfSight(environment);
  const SnapshotContext context{wallClockNow(), user, hostRules(), protections, frontmost, outOfSight};
  HostSnapshot snapshot = snapshotOf(listing->processes, records, projects, context);
  snapshot.unownedListeners = listing->unownedListeners;
  return snapshot;
}

Outcome rememberOwners(const Environment& environment, const HostSnapshot& snapshot) {
  const auto folder = stateFolder(environment);
  if (!folder) return {};
  const OwnershipStore store(*folder);
  const std::string boot = bootId();
  // Filled when it is first asked for: the file is seldom large enough to be cleaned, the processes are many.
  std::set<std::pair<std::int32_t, std::int64_t>> living;
  const auto cleaned = store.clean(boot, [&](std::int32_t pid, std::int64_t start) {
    if (living.empty()) {
      for (const TrackedProcess& process : snapshot.processes) living.insert({process.pid, process.startTime});
    }
    return living.contains({pid, start});
  });
  auto added = store.add(ownershipOf(snapshot, boot));
  return added ? cleaned : added;
}

Outcome rememberChildren(const Environment& environment, const ProcessFacts& agent, const std::string& agentName) {
  const auto folder = stateFolder(environment);
  if (!folder) return {};
  const std::string boot = bootId();
  const std::vector<ProcessFacts> below = processesBelow(agent.pid);
  std::map<std::int32_t, std::int32_t> parents;
  for (const ProcessFacts& each : below) parents.emplace(each.pid, each.ppid);
  // Between agent and hook there are only a shell and this process itself, which end with the hook.
  std::set<std::int32_t> passing;
  for (auto each = parents.find(static_cast<std::int32_t>(::getpid())); each != parents.end();
       each = parents.find(each->second)) {
    if (!passing.insert(each->first).second) break;
  }
  std::vector<OwnershipRecord> records;
  for (const ProcessFacts& child : below) {
    if (passing.contains(child.pid)) continue;
    records.push_back({boot, child.pid, child.startTime, agent.pid, agent.startTime, agentName});
  }
  const OwnershipStore store(*folder);
  // Without a watching application nobody else cleans the file, and every hook reads all of it.
  const auto isAlive = [](std::int32_t pid, std::int64_t start) { return startStampOf(pid) == start; };
  auto cleaned = store.clean(boot, isAlive);
  auto added = store.add(records);
  return added ? cleaned : added;
}

}  // namespace brindle
