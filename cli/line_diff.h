// The difference of two texts, line by line, as diff -u writes it.
//
// Used where a person is to see what would be changed. Pure.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace brindle {

/// Lines shown before and after each change.
inline constexpr std::size_t kDiffContext = 3;

struct DiffTexts {
  /// How the two are called in the heading: a path, or "/dev/null" for none.
  std::string_view beforeName;
  std::string_view afterName;
  std::string_view before;
  std::string_view after;
};

/// Heading and hunks, each line with its end; empty when the texts are equal. Applied to `before` it gives `after`.
/// Texts of many thousand lines that differ at both ends are shown as one large change.
[[nodiscard]] std::string lineDiff(const DiffTexts& texts);

}  // namespace brindle
