// Every text of the process table: lines, arguments, environments, sockets, records. None may do harm, nothing outside
// the named variables may come out of an environment, and what has an encoder must read back.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "base/text.h"
#include "inventory/agent_recognition.h"
#include "inventory/cpu_sample.h"
#include "inventory/framework_recognition.h"
#include "inventory/ownership_record.h"
#include "inventory/proc_stat.h"
#include "inventory/proc_text.h"
#include "inventory/program_recognition.h"
#include "inventory/project_name.h"
#include "inventory/tcp_sockets.h"
#include "inventory/valid_text.h"

using namespace brindle;

namespace {

void require(bool held) {
  if (!held) std::abort();
}

void recognise(std::string_view text) {
  ProcessFacts facts{.pid = 7, .arguments = parseArguments(text)};
  if (!facts.arguments.empty()) {
    facts.name = facts.arguments.back();
    facts.path = facts.arguments.front();
  }
  facts.variables = parseNamedVariables(text, namedVariables());
  for (const NamedVariable& each : facts.variables) require(each.value.size() <= kVariableByteLimit);
  const ProgramIdentity program = identityOf(facts);
  (void)recogniseAgent(program);
  (void)recogniseFramework(program);
  (void)livesOnByDesign(program);
  (void)agentsNamedByVariables(facts);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  if (const auto stat = parseProcStat(text)) require(stat->pid > 0 && stat->ppid >= 0 && stat->startTicks >= 0);
  (void)parsePrivatePages(text);
  (void)parseSwapBytes(text);
  (void)parseSocketLink(text);
  for (const std::int32_t pid : parsePidList(text)) require(pid > 0);
  require(parseTcpTable(text).size() <= kSocketLimit);
  require(isValidUtf8(validText(text)));
  require(isValidUtf8(terminalText(text)));
  require(terminalText(text).find('\x1b') == std::string::npos);
  for (const auto& row : allCases<Manifest>()) (void)projectNameFrom(row.value, text);
  if (const auto record = ownershipFromLine(text)) {
    const auto again = ownershipFromLine(ownershipLine(*record));
    require(again && ownershipLine(*again) == ownershipLine(*record));
  }
  const CpuSample sample = cpuSampleFrom(text);
  require(cpuSampleFrom(cpuSampleText(sample)).seconds == sample.seconds);
  recognise(text);
  return 0;
}
