#include "logic/mcp/mcp_heartbeat.h"

#include "base/file.h"
#include "base/iso8601.h"
#include "base/json_reader.h"
#include "base/json_record.h"
#include "base/json_writer.h"

namespace brindle::MCPHeartbeat {
namespace {

constexpr std::size_t kByteLimit = 4096;

std::string pathIn(const std::string& directory) { return directory + "/" + std::string(kFileName); }

}  // namespace

std::string encodeStamp(const Stamp& stamp) { return writeJson(JsonObject{{"time", writeIso8601(stamp.time)}}); }

std::optional<Stamp> decodeStamp(std::string_view text) {
  const std::optional<JsonValue> document = parseJson(text);
  const JsonObject* object = document ? document->object() : nullptr;
  const std::optional<Date> time = object == nullptr ? std::nullopt : isoDateMember(*object, "time");
  if (!time) return std::nullopt;
  return Stamp{*time};
}

Outcome write(const std::string& directory, Date now) {
  if (const Outcome folder = ensureFolder(directory); !folder) return folder;
  return replaceFile(pathIn(directory), encodeStamp({now}));
}

bool isFresh(const std::string& directory, Date now, Seconds maximumAge) {
  const Result<std::string> text = readFile(pathIn(directory), kByteLimit);
  const std::optional<Stamp> stamp = text ? decodeStamp(*text) : std::nullopt;
  return stamp && now - stamp->time < maximumAge;
}

}  // namespace brindle::MCPHeartbeat
