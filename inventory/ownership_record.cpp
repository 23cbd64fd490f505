#include "inventory/ownership_record.h"

#include <utility>

#include "base/json_reader.h"
#include "base/json_record.h"
#include "base/json_writer.h"
#include "base/text.h"

namespace brindle {
namespace {

/// No name of an agent or boot is longer; leaves room for escapes.
constexpr std::size_t kTextCharacters = 64;

}  // namespace

std::string ownershipLine(const OwnershipRecord& record) {
  JsonObject object;
  object.append("boot", firstCharacters(record.boot, kTextCharacters));
  object.append("pid", record.pid);
  object.append("startTime", record.startTime);
  object.append("agentPid", record.agentPid);
  object.append("agentStartTime", record.agentStartTime);
  object.append("agent", firstCharacters(record.agent, kTextCharacters));
  return writeJson(JsonValue(std::move(object)), {.escapeSlashes = false}) + "\n";
}

std::optional<OwnershipRecord> ownershipFromLine(std::string_view line) {
  if (line.size() > kOwnershipLineLimit) return std::nullopt;
  const auto document = parseJson(line);
  const JsonObject* object = document ? document->object() : nullptr;
  if (object == nullptr) return std::nullopt;
  const auto boot = stringMember(*object, "boot");
  const auto pid = int32Member(*object, "pid");
  const auto startTime = integerMember(*object, "startTime");
  const auto agentPid = int32Member(*object, "agentPid");
  const auto agentStartTime = integerMember(*object, "agentStartTime");
  const auto agent = stringMember(*object, "agent");
  if (!boot || !pid || !startTime || !agentPid || !agentStartTime || !agent) return std::nullopt;
  if (*pid < 2 || *agentPid < 2) return std::nullopt;
  return OwnershipRecord{*boot, *pid, *startTime, *agentPid, *agentStartTime, *agent};
}

}  // namespace brindle
