// The JSON forms that the records of processes and sessions share: unsigned numbers, ports, finite numbers.
//
// Used by the codecs of logic/sessions, logic/reports and logic/widget. Pure; safe on any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/json_value.h"

namespace brindle {

/// A number of up to 64 unsigned bits, which the signed constructor of JsonNumber cannot take.
[[nodiscard]] JsonNumber unsignedNumber(std::uint64_t value);

/// Whole numbers from 0 to 2^64 - 1; above 2^63 - 1 only as plain digits. None for anything else.
[[nodiscard]] std::optional<std::uint64_t> uint64Member(const JsonObject& object, std::string_view key);
/// Whole numbers from 0 to 2^32 - 1; none for anything else.
[[nodiscard]] std::optional<std::uint32_t> uint32Member(const JsonObject& object, std::string_view key);

[[nodiscard]] JsonArray portsToJson(const std::vector<int>& ports);
/// An array whose elements are all whole numbers of 32 signed bits; none for anything else. Whether they are
/// possible ports is not looked at.
[[nodiscard]] std::optional<std::vector<int>> portsMember(const JsonObject& object, std::string_view key);

/// Appends the member, or nothing when JSON has no text for `value`.
void appendIfFinite(JsonObject& object, std::string key, double value);

/// What tells one process from another.
struct ProcessIdentity {
  std::int32_t pid = 0;
  std::int64_t startTime = 0;
  std::string_view name;
};
[[nodiscard]] std::size_t hashIdentity(const ProcessIdentity& identity) noexcept;

}  // namespace brindle
