#include "platform/kernel_processes_macos.h"

#include <arpa/inet.h>
#include <libproc.h>
#include <mach/mach_time.h>
#include <netinet/in.h>
#include <sys/proc_info.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <string>

#include "inventory/agent_table.h"
#include "inventory/arguments_block.h"

namespace brindle {
namespace {

/// Flavour 17 of proc_pidinfo and its answer, which the public headers leave out; stable since macOS 10.8.
constexpr int kUniqueIdentifiers = 17;
struct UniqueIdentifiers {
  std::array<std::uint8_t, 16> executable;
  std::uint64_t own;
  std::uint64_t originalParent;
  std::array<std::uint64_t, 3> reserved;
};
static_assert(sizeof(UniqueIdentifiers) == 56);

/// launchd is the first process ever started.
constexpr std::uint64_t kLaunchdIdentifier = 1;
constexpr int kDescriptorLimit = 4096;

double secondsOfTicks(std::uint64_t ticks) {
  mach_timebase_info_data_t base = {};
  if (mach_timebase_info(&base) != KERN_SUCCESS || base.denom == 0) return 0;
  return static_cast<double>(ticks) * base.numer / base.denom / 1e9;
}

std::optional<bool> wasAdopted(std::int32_t pid, std::int32_t parent) {
  if (parent != 1) return std::nullopt;
  UniqueIdentifiers identifiers = {};
  const int size = static_cast<int>(sizeof identifiers);
  if (proc_pidinfo(pid, kUniqueIdentifiers, 0, &identifiers, size) != size) return std::nullopt;
  return identifiers.originalParent != kLaunchdIdentifier;
}

bool isLoopback(const in_sockinfo& socket) {
  if (socket.insi_vflag == INI_IPV4) {
    return (ntohl(socket.insi_laddr.ina_46.i46a_addr4.s_addr) >> 24) == 127;
  }
  return IN6_IS_ADDR_LOOPBACK(&socket.insi_laddr.ina_6);
}

}  // namespace

std::vector<kinfo_proc> kernelProcesses() {
  std::array<int, 4> name = {CTL_KERN, KERN_PROC, KERN_PROC_ALL, 0};
  std::vector<kinfo_proc> entries;
  // The table may grow between the two calls, so there is room for more, and a second try.
  for (int attempt = 0; attempt < 3; ++attempt) {
    std::size_t size = 0;
    if (sysctl(name.data(), 3, nullptr, &size, nullptr, 0) != 0) return {};
    entries.resize(size / sizeof(kinfo_proc) + 64);
    size = entries.size() * sizeof(kinfo_proc);
    if (sysctl(name.data(), 3, entries.data(), &size, nullptr, 0) != 0) continue;
    entries.resize(size / sizeof(kinfo_proc));
    return entries;
  }
  return {};
}

std::optional<kinfo_proc> kernelProcess(std::int32_t pid) {
  std::array<int, 4> name = {CTL_KERN, KERN_PROC, KERN_PROC_PID, pid};
  kinfo_proc entry = {};
  std::size_t size = sizeof entry;
  if (sysctl(name.data(), 4, &entry, &size, nullptr, 0) != 0 || size < sizeof entry) return std::nullopt;
  return entry;
}

bool hasEnded(const kinfo_proc& entry) { return entry.kp_proc.p_stat == SZOMB; }

std::int64_t startStampOf(const kinfo_proc& entry) {
  const timeval& start = entry.kp_proc.p_starttime;
  return std::int64_t{start.tv_sec} * 1'000'000 + start.tv_usec;
}

ProcessFacts factsOf(const kinfo_proc& entry) {
  ProcessFacts facts;
  facts.pid = entry.kp_proc.p_pid;
  facts.ppid = entry.kp_eproc.e_ppid;
  facts.uid = entry.kp_eproc.e_ucred.cr_uid;
  facts.name = std::string(entry.kp_proc.p_comm, strnlen(entry.kp_proc.p_comm, sizeof entry.kp_proc.p_comm));
  facts.startTime = startStampOf(entry);
  facts.start = dateFromSeconds(static_cast<double>(facts.startTime) / 1e6);
  facts.hasTerminal = entry.kp_eproc.e_tdev != NODEV;
  facts.adopted = wasAdopted(facts.pid, facts.ppid);
  return facts;
}

void readProgram(ProcessFacts& facts) {
  std::array<char, PROC_PIDPATHINFO_MAXSIZE> path = {};
  const int length = proc_pidpath(facts.pid, path.data(), path.size());
  if (length > 0) facts.path = std::string(path.data(), static_cast<std::size_t>(length));
  // A buffer shorter than the kernel's full argument size would be given the tail of the block.
  static const std::size_t limit = [] {
    std::array<int, 2> name = {CTL_KERN, KERN_ARGMAX};
    int value = 0;
    std::size_t size = sizeof value;
    return sysctl(name.data(), 2, &value, &size, nullptr, 0) == 0 && value > 0 ? static_cast<std::size_t>(value)
                                                                               : std::size_t{1} << 20;
  }();
  std::array<int, 3> name = {CTL_KERN, KERN_PROCARGS2, facts.pid};
  // A megabyte of which a few pages are used: clearing it would cost more than the call.
  const std::unique_ptr<char[]> block(new char[limit]);
  std::size_t size = limit;
  if (sysctl(name.data(), 3, block.get(), &size, nullptr, 0) != 0) return;
  auto found = parseArgumentsBlock({block.get(), std::min(size, limit)}, namedVariables());
  if (!found) return;
  facts.arguments = std::move(found->arguments);
  facts.variables = std::move(found->variables);
}

void readDetails(ProcessFacts& facts) {
  proc_vnodepathinfo folders = {};
  if (proc_pidinfo(facts.pid, PROC_PIDVNODEPATHINFO, 0, &folders, sizeof folders) == static_cast<int>(sizeof folders) &&
      folders.pvi_cdir.vip_path[0] != '\0') {
    facts.cwd = folders.pvi_cdir.vip_path;
  }
  rusage_info_v2 usage = {};
  if (proc_pid_rusage(facts.pid, RUSAGE_INFO_V2, reinterpret_cast<rusage_info_t*>(&usage)) == 0) {
    facts.footprint = usage.ri_phys_footprint;
    facts.cpuSeconds = secondsOfTicks(usage.ri_user_time + usage.ri_system_time);
  }
}

std::vector<TcpSocket> socketsOf(std::int32_t pid) {
  std::vector<TcpSocket> sockets;
  std::vector<proc_fdinfo> descriptors(kDescriptorLimit);
  const int size = proc_pidinfo(pid, PROC_PIDLISTFDS, 0, descriptors.data(),
                                static_cast<int>(descriptors.size() * sizeof(proc_fdinfo)));
  if (size <= 0) return sockets;
  descriptors.resize(static_cast<std::size_t>(size) / sizeof(proc_fdinfo));
  for (const proc_fdinfo& descriptor : descriptors) {
    if (descriptor.proc_fdtype != PROX_FDTYPE_SOCKET) continue;
    socket_fdinfo info = {};
    if (proc_pidfdinfo(pid, descriptor.proc_fd, PROC_PIDFDSOCKETINFO, &info, sizeof info) !=
        static_cast<int>(sizeof info)) {
      continue;
    }
    if (info.psi.soi_kind != SOCKINFO_TCP) continue;
    const tcp_sockinfo& tcp = info.psi.soi_proto.pri_tcp;
    if (tcp.tcpsi_state != TSI_S_LISTEN && tcp.tcpsi_state != TSI_S_ESTABLISHED) continue;
    const TcpState state = tcp.tcpsi_state == TSI_S_LISTEN ? TcpState::listening : TcpState::established;
    sockets.push_back({state, ntohs(static_cast<std::uint16_t>(tcp.tcpsi_ini.insi_lport)), isLoopback(tcp.tcpsi_ini), 0,
                       info.psi.soi_so});
  }
  return sockets;
}

}  // namespace brindle
