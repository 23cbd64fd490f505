#include "logic/widget/widget_snapshot.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "base/json_record.h"
#include "logic/sessions/record_json.h"

namespace brindle {
namespace {

using Plan = WidgetSnapshot::Plan;

JsonObject encodePlan(const Plan& plan) {
  JsonObject object;
  object.append("account", plan.account);
  appendIfFinite(object, "used", plan.used);
  if (plan.resets) appendIfFinite(object, "resets", secondsSince1970(*plan.resets));
  if (plan.emptyAt) appendIfFinite(object, "emptyAt", secondsSince1970(*plan.emptyAt));
  object.append("onPace", plan.onPace);
  return object;
}

std::optional<Plan> decodePlan(const JsonObject& object) {
  auto account = stringMember(object, "account");
  const auto used = realMember(object, "used");
  const auto onPace = booleanMember(object, "onPace");
  if (!account || !used || !onPace) return std::nullopt;
  return Plan{.account = std::move(*account),
              .used = *used,
              .resets = secondsDateMember(object, "resets"),
              .emptyAt = secondsDateMember(object, "emptyAt"),
              .onPace = *onPace};
}

std::optional<std::vector<std::uint16_t>> ghostPortsMember(const JsonObject& object) {
  const auto wide = portsMember(object, "ghostPorts");
  if (!wide) return std::nullopt;
  std::vector<std::uint16_t> ports;
  ports.reserve(wide->size());
  for (const int port : *wide) {
    if (port < 0 || port > std::numeric_limits<std::uint16_t>::max()) return std::nullopt;
    ports.push_back(static_cast<std::uint16_t>(port));
  }
  return ports;
}

std::optional<std::vector<std::string>> agentNamesMember(const JsonObject& object) {
  const JsonArray* array = arrayMember(object, "agentNames");
  if (array == nullptr) return std::nullopt;
  std::vector<std::string> names;
  names.reserve(array->size());
  for (const JsonValue& element : *array) {
    if (element.string() == nullptr) return std::nullopt;
    names.push_back(*element.string());
  }
  return names;
}

}  // namespace

JsonObject encode(const WidgetSnapshot& snapshot) {
  JsonObject object;
  appendIfFinite(object, "takenAt", secondsSince1970(snapshot.takenAt));
  object.append("ghosts", snapshot.ghosts);
  object.append("ghostBytes", unsignedNumber(snapshot.ghostBytes));
  object.append("ghostPorts", JsonArray(snapshot.ghostPorts.begin(), snapshot.ghostPorts.end()));
  object.append("agents", snapshot.agents);
  object.append("agentNames", JsonArray(snapshot.agentNames.begin(), snapshot.agentNames.end()));
  object.append("working", snapshot.working);
  object.append("memoryUsed", unsignedNumber(snapshot.memoryUsed));
  object.append("memoryTotal", unsignedNumber(snapshot.memoryTotal));
  if (snapshot.plan) object.append("plan", encodePlan(*snapshot.plan));
  object.append("freedThisWeek", unsignedNumber(snapshot.freedThisWeek));
  object.append("freedProcesses", snapshot.freedProcesses);
  return object;
}

std::optional<WidgetSnapshot> decodeWidgetSnapshot(const JsonObject& object) {
  const auto takenAt = secondsDateMember(object, "takenAt");
  const auto ghosts = integerMember(object, "ghosts");
  const auto ghostBytes = uint64Member(object, "ghostBytes");
  auto ghostPorts = ghostPortsMember(object);
  const auto agents = integerMember(object, "agents");
  auto agentNames = agentNamesMember(object);
  const auto working = integerMember(object, "working");
  const auto memoryUsed = uint64Member(object, "memoryUsed");
  const auto memoryTotal = uint64Member(object, "memoryTotal");
  const auto freedThisWeek = uint64Member(object, "freedThisWeek");
  const auto freedProcesses = integerMember(object, "freedProcesses");
  if (!takenAt || !ghosts || !ghostBytes || !ghostPorts || !agents || !agentNames || !working || !memoryUsed ||
      !memoryTotal || !freedThisWeek || !freedProcesses) {
    return std::nullopt;
  }
  std::optional<Plan> plan;
  if (const JsonObject* member = objectMember(object, "plan")) {
    plan = decodePlan(*member);
    if (!plan) return std::nullopt;
  }
  return WidgetSnapshot{.takenAt = *takenAt,
                        .ghosts = *ghosts,
                        .ghostBytes = *ghostBytes,
                        .ghostPorts = std::move(*ghostPorts),
                        .agents = *agents,
                        .agentNames = std::move(*agentNames),
                        .working = *working,
                        .memoryUsed = *memoryUsed,
                        .memoryTotal = *memoryTotal,
                        .plan = std::move(plan),
                        .freedThisWeek = *freedThisWeek,
                        .freedProcesses = *freedProcesses};
}

}  // namespace brindle
