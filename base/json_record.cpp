#include "base/json_record.h"

#include <limits>

#include "base/iso8601.h"

namespace brindle {

std::optional<std::string> stringMember(const JsonObject& object, std::string_view key) {
  const JsonValue* value = object.find(key);
  if (value == nullptr || value->string() == nullptr) return std::nullopt;
  return *value->string();
}

std::optional<bool> booleanMember(const JsonObject& object, std::string_view key) {
  const JsonValue* value = object.find(key);
  return value == nullptr ? std::nullopt : value->boolean();
}

std::optional<std::int64_t> integerMember(const JsonObject& object, std::string_view key) {
  const JsonValue* value = object.find(key);
  if (value == nullptr || value->number() == nullptr) return std::nullopt;
  return value->number()->integer();
}

std::optional<std::int32_t> int32Member(const JsonObject& object, std::string_view key) {
  const auto value = integerMember(object, key);
  if (!value) return std::nullopt;
  if (*value < std::numeric_limits<std::int32_t>::min() || *value > std::numeric_limits<std::int32_t>::max()) {
    return std::nullopt;
  }
  return static_cast<std::int32_t>(*value);
}

std::optional<double> realMember(const JsonObject& object, std::string_view key) {
  const JsonValue* value = object.find(key);
  if (value == nullptr || value->number() == nullptr) return std::nullopt;
  return value->number()->real();
}

std::optional<Date> secondsDateMember(const JsonObject& object, std::string_view key) {
  const auto seconds = realMember(object, key);
  if (!seconds) return std::nullopt;
  return dateFromSeconds(*seconds);
}

std::optional<Date> isoDateMember(const JsonObject& object, std::string_view key) {
  const auto text = stringMember(object, key);
  if (!text) return std::nullopt;
  return readIso8601(*text);
}

const JsonArray* arrayMember(const JsonObject& object, std::string_view key) {
  const JsonValue* value = object.find(key);
  return value == nullptr ? nullptr : value->array();
}

const JsonObject* objectMember(const JsonObject& object, std::string_view key) {
  const JsonValue* value = object.find(key);
  return value == nullptr ? nullptr : value->object();
}

}  // namespace brindle
