#include "logic/sessions/tracked_process.h"

#include <cmath>
#include <utility>

#include "base/json_record.h"
#include "logic/sessions/byte_sum.h"
#include "logic/sessions/record_json.h"

namespace brindle {

std::unordered_map<std::int32_t, std::vector<const TrackedProcess*>> groupByParent(
    const std::vector<TrackedProcess>& processes) {
  std::unordered_map<std::int32_t, std::vector<const TrackedProcess*>> groups;
  for (const TrackedProcess& process : processes) groups[process.ppid].push_back(&process);
  return groups;
}

JsonObject encode(const TrackedProcess& process) {
  JsonObject object;
  object.append("pid", process.pid);
  object.append("ppid", process.ppid);
  object.append("uid", unsignedNumber(process.uid));
  object.append("name", process.name);
  appendIfPresent(object, "path", process.path);
  object.append("commandLine", process.commandLine);
  appendIfPresent(object, "cwd", process.cwd);
  appendIfFinite(object, "start", secondsSince1970(process.start));
  object.append("startTime", process.startTime);
  object.append("footprint", unsignedNumber(process.footprint));
  if (process.cpuPercent) appendIfFinite(object, "cpuPercent", *process.cpuPercent);
  object.append("ports", portsToJson(process.ports));
  if (process.role) object.append("role", textOf(*process.role));
  appendIfPresent(object, "agentName", process.agentName);
  appendIfPresent(object, "framework", process.framework);
  appendIfPresent(object, "project", process.project);
  appendIfPresent(object, "recordedAgentPID", process.recordedAgentPID);
  appendIfPresent(object, "recordedAgentName", process.recordedAgentName);
  object.append("recordedAgentAlive", process.recordedAgentAlive);
  return object;
}

std::optional<TrackedProcess> decodeTrackedProcess(const JsonObject& object) {
  const auto pid = int32Member(object, "pid");
  const auto ppid = int32Member(object, "ppid");
  const auto uid = uint32Member(object, "uid");
  auto name = stringMember(object, "name");
  auto commandLine = stringMember(object, "commandLine");
  const auto start = secondsDateMember(object, "start");
  const auto startTime = integerMember(object, "startTime");
  const auto footprint = uint64Member(object, "footprint");
  auto ports = portsMember(object, "ports");
  const auto recordedAgentAlive = booleanMember(object, "recordedAgentAlive");
  if (!pid || !ppid || !uid || !name || !commandLine || !start || !startTime || !footprint || !ports ||
      !recordedAgentAlive) {
    return std::nullopt;
  }
  return TrackedProcess{
      .pid = *pid,
      .ppid = *ppid,
      .uid = *uid,
      .name = std::move(*name),
      .path = stringMember(object, "path"),
      .commandLine = std::move(*commandLine),
      .cwd = stringMember(object, "cwd"),
      .start = *start,
      .startTime = *startTime,
      .footprint = *footprint,
      .cpuPercent = realMember(object, "cpuPercent"),
      .ports = std::move(*ports),
      .role = enumMember<ProcessRole>(object, "role"),
      .agentName = stringMember(object, "agentName"),
      .framework = stringMember(object, "framework"),
      .project = stringMember(object, "project"),
      .recordedAgentPID = int32Member(object, "recordedAgentPID"),
      .recordedAgentName = stringMember(object, "recordedAgentName"),
      .recordedAgentAlive = *recordedAgentAlive,
  };
}

JsonArray encodeSnapshot(const std::vector<TrackedProcess>& processes) {
  JsonArray array;
  array.reserve(processes.size());
  for (const TrackedProcess& process : processes) array.emplace_back(encode(process));
  return array;
}

std::optional<std::vector<TrackedProcess>> decodeSnapshot(const JsonValue& json) {
  const JsonArray* array = json.array();
  if (array == nullptr) return std::nullopt;
  std::vector<TrackedProcess> processes;
  processes.reserve(array->size());
  std::uint64_t memory = 0;
  for (const JsonValue& element : *array) {
    auto process = element.object() == nullptr ? std::nullopt : decodeTrackedProcess(*element.object());
    if (!process || std::abs(secondsSince1970(process->start)) > kFarthestStart) return std::nullopt;
    if (byteSumOverflows(memory, process->footprint)) return std::nullopt;
    memory += process->footprint;
    processes.push_back(std::move(*process));
  }
  return processes;
}

}  // namespace brindle

std::size_t std::hash<brindle::TrackedProcess>::operator()(const brindle::TrackedProcess& process) const noexcept {
  return brindle::hashIdentity({process.pid, process.startTime, process.name});
}
