// One table of texts for each enumeration: its raw values on the wire, in files and in logs.
//
// An enumeration E gets a table by specialising kEnumTexts<E> beside its definition:
//
//   enum class Kind { finished, waiting };
//   template <>
//   inline constexpr auto kEnumTexts<Kind> = std::to_array<EnumText<Kind>>({
//       {Kind::finished, "finished"}, {Kind::waiting, "waiting"}});
//
// The table names every case once, in declaration order; tests walk it with allCases<E>().
#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace brindle {

template <typename E>
struct EnumText {
  E value;
  std::string_view text;
};

template <typename E>
inline constexpr int kEnumTexts = 0;  // specialised as a std::array of EnumText<E>

/// The table of E, for walking over all its cases in declaration order.
template <typename E>
[[nodiscard]] constexpr const auto& allCases() {
  return kEnumTexts<E>;
}

/// The text of `value`; empty for a value that is no case of E.
template <typename E>
[[nodiscard]] constexpr std::string_view textOf(E value) {
  for (const auto& row : kEnumTexts<E>) {
    if (row.value == value) return row.text;
  }
  return {};
}

/// The case whose text is exactly `text`, byte for byte; none when there is none.
template <typename E>
[[nodiscard]] constexpr std::optional<E> enumFrom(std::string_view text) {
  for (const auto& row : kEnumTexts<E>) {
    if (row.text == text) return row.value;
  }
  return std::nullopt;
}

}  // namespace brindle
