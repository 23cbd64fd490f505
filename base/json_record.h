// Reading the members of a record from a JSON object, with the one rule for wrong types: such a member counts as
// absent. Used by the decoders of records, settings and rules.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/date.h"
#include "base/enum_text.h"
#include "base/json_value.h"

namespace brindle {

/// Each answers none when the key is absent, null, or of another type; numbers also when out of range.
[[nodiscard]] std::optional<std::string> stringMember(const JsonObject& object, std::string_view key);
[[nodiscard]] std::optional<bool> booleanMember(const JsonObject& object, std::string_view key);
/// Whole numbers only ("2.0" is one, "2.5" is not).
[[nodiscard]] std::optional<std::int64_t> integerMember(const JsonObject& object, std::string_view key);
[[nodiscard]] std::optional<std::int32_t> int32Member(const JsonObject& object, std::string_view key);
[[nodiscard]] std::optional<double> realMember(const JsonObject& object, std::string_view key);
/// Seconds since 1970 as a number.
[[nodiscard]] std::optional<Date> secondsDateMember(const JsonObject& object, std::string_view key);
/// An ISO 8601 text as readIso8601 takes it.
[[nodiscard]] std::optional<Date> isoDateMember(const JsonObject& object, std::string_view key);
[[nodiscard]] const JsonArray* arrayMember(const JsonObject& object, std::string_view key);
[[nodiscard]] const JsonObject* objectMember(const JsonObject& object, std::string_view key);

template <typename E>
[[nodiscard]] std::optional<E> enumMember(const JsonObject& object, std::string_view key) {
  const JsonValue* value = object.find(key);
  if (value == nullptr || value->string() == nullptr) return std::nullopt;
  return enumFrom<E>(*value->string());
}

/// Appends the member only when there is a value: absent fields have no key.
template <typename T>
void appendIfPresent(JsonObject& object, std::string key, const std::optional<T>& value) {
  if (value) object.append(std::move(key), JsonValue(*value));
}

}  // namespace brindle
