#include "platform/proc_facts_linux.h"

#include <sys/sysinfo.h>
#include <unistd.h>

#include <algorithm>

#include "inventory/proc_text.h"
#include "platform/clock.h"
#include "system/boot_clock.h"

namespace brindle {

Machine machineNow() {
  return {static_cast<double>(std::max(1L, ::sysconf(_SC_CLK_TCK))),
          static_cast<std::uint64_t>(std::max(1L, ::sysconf(_SC_PAGESIZE))), wallClockNow(), bootClockNow()};
}

ProcessFacts factsOfEntry(const ProcFolder::Entry& entry, const Machine& machine) {
  ProcessFacts facts;
  facts.pid = entry.stat.pid;
  facts.ppid = entry.stat.ppid;
  facts.uid = entry.uid;
  facts.name = entry.stat.name;
  facts.startTime = entry.stat.startTicks;
  const Seconds age = machine.sinceBoot - Seconds{static_cast<double>(entry.stat.startTicks) / machine.ticksPerSecond};
  facts.start = machine.now - std::max(age, Seconds{0});
  facts.hasTerminal = entry.stat.terminal != 0;
  facts.cpuSeconds = static_cast<double>(entry.stat.cpuTicks) / machine.ticksPerSecond;
  return facts;
}

bool swapIsUsed() {
  struct sysinfo about = {};
  return ::sysinfo(&about) != 0 || about.totalswap != about.freeswap;
}

void readProgram(ProcFolder& proc, ProcessFacts& facts) {
  if (const auto text = proc.read(facts.pid, "cmdline")) facts.arguments = parseArguments(*text);
  facts.path = proc.link(facts.pid, "exe");
}

}  // namespace brindle
