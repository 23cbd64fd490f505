#include "platform/process_table_macos.h"

#include <libproc.h>
#include <mach/mach_time.h>
#include <sys/proc_info.h>
#include <sys/sysctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>

#include "inventory/agent_table.h"
#include "inventory/proc_text.h"
#include "inventory/procargs_text.h"

namespace brindle {
namespace {

/// The flavour that tells a process's unique identity and that of the one that started it; the public header leaves
/// it out.
constexpr int kUniqueIdentifierFlavour = 17;

struct UniqueIdentity {
  std::array<std::uint8_t, 16> executable;
  std::uint64_t process;
  std::uint64_t startedBy;
  std::array<std::uint64_t, 3> reserved;
};
static_assert(sizeof(UniqueIdentity) == 56);

/// Asks twice, for the size and for the content, because the table may grow between.
std::vector<kinfo_proc> kernelEntries(std::array<int, 4> name, unsigned int length) {
  for (int attempt = 0; attempt < 3; ++attempt) {
    std::size_t bytes = 0;
    if (sysctl(name.data(), length, nullptr, &bytes, nullptr, 0) != 0) return {};
    std::vector<kinfo_proc> entries(bytes / sizeof(kinfo_proc) + 16);
    bytes = entries.size() * sizeof(kinfo_proc);
    if (sysctl(name.data(), length, entries.data(), &bytes, nullptr, 0) != 0) continue;
    entries.resize(bytes / sizeof(kinfo_proc));
    return entries;
  }
  return {};
}

ProcessFacts factsOf(const kinfo_proc& entry) {
  ProcessFacts facts;
  facts.pid = entry.kp_proc.p_pid;
  facts.ppid = entry.kp_eproc.e_ppid;
  facts.uid = entry.kp_eproc.e_ucred.cr_uid;
  facts.name.assign(entry.kp_proc.p_comm, strnlen(entry.kp_proc.p_comm, sizeof entry.kp_proc.p_comm));
  const timeval start = entry.kp_proc.p_starttime;
  facts.startTime = std::int64_t{start.tv_sec} * 1'000'000 + start.tv_usec;
  facts.start = Date{std::chrono::microseconds(facts.startTime)};
  facts.hasTerminal = entry.kp_eproc.e_tdev != -1;
  // The superuser may look at everybody's.
  facts.inspected = geteuid() == 0 || facts.uid == geteuid();
  return facts;
}

bool isAlive(const kinfo_proc& entry) { return entry.kp_proc.p_pid > 0 && entry.kp_proc.p_stat != SZOMB; }

template <typename Info>
std::optional<Info> infoOf(std::int32_t pid, int flavour) {
  Info info = {};
  const int size = static_cast<int>(sizeof info);
  if (proc_pidinfo(pid, flavour, 0, &info, size) < size) return std::nullopt;
  return info;
}

/// The kernel's longest block; a buffer of another size would be given the tail of one.
std::size_t longestBlock() {
  int longest = 0;
  std::size_t bytes = sizeof longest;
  std::array<int, 2> name{CTL_KERN, KERN_ARGMAX};
  const bool known = sysctl(name.data(), 2, &longest, &bytes, nullptr, 0) == 0 && longest > 0;
  return known ? static_cast<std::size_t>(longest) : std::size_t{1} << 20;
}

/// Reads arguments and environment. The block is large and mostly untouched, so it is not cleared.
void readStart(ProcessFacts& facts) {
  static const std::size_t size = longestBlock();
  const std::unique_ptr<char[]> block(new char[size]);
  std::size_t bytes = size;
  std::array<int, 3> name{CTL_KERN, KERN_PROCARGS2, facts.pid};
  if (sysctl(name.data(), 3, block.get(), &bytes, nullptr, 0) != 0) return;
  const auto start = parseProcessStart({block.get(), std::min(bytes, size)});
  if (!start) return;
  facts.arguments = start->arguments;
  facts.variables = parseNamedVariables(start->environment, namedVariables());
}

double secondsOfTicks(std::uint64_t ticks) {
  mach_timebase_info_data_t base = {};
  mach_timebase_info(&base);
  return static_cast<double>(ticks) * base.numer / base.denom / 1e9;
}

/// Whether the parent of now is another one than the process that started it.
std::optional<bool> wasAdopted(const ProcessFacts& facts) {
  const auto own = infoOf<UniqueIdentity>(facts.pid, kUniqueIdentifierFlavour);
  const auto parent = infoOf<UniqueIdentity>(facts.ppid, kUniqueIdentifierFlavour);
  if (!own || !parent) return std::nullopt;
  return own->startedBy != parent->process;
}

}  // namespace

std::vector<ProcessFacts> processTable(std::size_t limit) {
  std::vector<ProcessFacts> table;
  for (const kinfo_proc& entry : kernelEntries({CTL_KERN, KERN_PROC, KERN_PROC_ALL, 0}, 3)) {
    if (isAlive(entry) && table.size() < limit) table.push_back(factsOf(entry));
  }
  return table;
}

std::optional<ProcessFacts> tableEntry(std::int32_t pid) {
  for (const kinfo_proc& entry : kernelEntries({CTL_KERN, KERN_PROC, KERN_PROC_PID, pid}, 4)) {
    if (entry.kp_proc.p_pid == pid && isAlive(entry)) return factsOf(entry);
  }
  return std::nullopt;
}

void readProgram(ProcessFacts& facts) {
  std::array<char, PROC_PIDPATHINFO_MAXSIZE> path = {};
  const int length = proc_pidpath(facts.pid, path.data(), path.size());
  if (length > 0) facts.path = std::string(path.data(), static_cast<std::size_t>(length));
  if (facts.inspected) readStart(facts);
}

void readUsage(ProcessFacts& facts) {
  if (!facts.inspected) return;
  rusage_info_v2 usage = {};
  if (proc_pid_rusage(facts.pid, RUSAGE_INFO_V2, reinterpret_cast<rusage_info_t*>(&usage)) == 0) {
    facts.footprint = usage.ri_phys_footprint;
    facts.cpuSeconds = secondsOfTicks(usage.ri_user_time + usage.ri_system_time);
  }
  if (const auto folders = infoOf<proc_vnodepathinfo>(facts.pid, PROC_PIDVNODEPATHINFO)) {
    const char* const text = folders->pvi_cdir.vip_path;
    facts.cwd = std::string(text, strnlen(text, sizeof folders->pvi_cdir.vip_path));
  }
  facts.adopted = wasAdopted(facts);
}

}  // namespace brindle
