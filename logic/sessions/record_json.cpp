#include "logic/sessions/record_json.h"

#include <cmath>
#include <functional>
#include <limits>
#include <utility>

#include "base/number_text.h"

namespace brindle {

JsonNumber unsignedNumber(std::uint64_t value) { return JsonNumber::fromText(std::to_string(value)); }

std::optional<std::uint64_t> uint64Member(const JsonObject& object, std::string_view key) {
  const JsonValue* value = object.find(key);
  const JsonNumber* number = value == nullptr ? nullptr : value->number();
  if (number == nullptr) return std::nullopt;
  if (const auto whole = number->integer()) {
    if (*whole < 0) return std::nullopt;
    return static_cast<std::uint64_t>(*whole);
  }
  return wholeFromText<std::uint64_t>(number->text());
}

std::optional<std::uint32_t> uint32Member(const JsonObject& object, std::string_view key) {
  const auto wide = uint64Member(object, key);
  if (!wide || *wide > std::numeric_limits<std::uint32_t>::max()) return std::nullopt;
  return static_cast<std::uint32_t>(*wide);
}

JsonArray portsToJson(const std::vector<int>& ports) { return {ports.begin(), ports.end()}; }

std::optional<std::vector<int>> portsMember(const JsonObject& object, std::string_view key) {
  const JsonValue* value = object.find(key);
  const JsonArray* array = value == nullptr ? nullptr : value->array();
  if (array == nullptr) return std::nullopt;
  std::vector<int> ports;
  ports.reserve(array->size());
  for (const JsonValue& element : *array) {
    const auto port = element.number() == nullptr ? std::nullopt : element.number()->integer();
    if (!port || *port < std::numeric_limits<int>::min() || *port > std::numeric_limits<int>::max()) {
      return std::nullopt;
    }
    ports.push_back(static_cast<int>(*port));
  }
  return ports;
}

void appendIfFinite(JsonObject& object, std::string key, double value) {
  if (std::isfinite(value)) object.append(std::move(key), value);
}

std::size_t hashIdentity(const ProcessIdentity& identity) noexcept {
  constexpr std::size_t kOddMultiplier = 0x9E3779B97F4A7C15U;  // spreads the few differing low bits of a pid
  std::size_t seed = std::hash<std::int64_t>{}(identity.startTime);
  seed = seed * kOddMultiplier + std::hash<std::int32_t>{}(identity.pid);
  return seed * kOddMultiplier + std::hash<std::string_view>{}(identity.name);
}

}  // namespace brindle
