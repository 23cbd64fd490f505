// Changes to a JSON document that leave every other byte of its text as it is.
//
// Used by the edits of agents' settings: people keep their own layout, and a rewritten document would lose it. A change
// is made in three steps: placesOf the text, find the place, and one of the functions below, which answers a new text;
// places of the old text do not hold for the new one. Pure.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/json_value.h"

namespace brindle {

/// A value in the text of a document, and the values in it.
struct JsonPlace {
  enum class Kind { object, array, string, other };

  Kind kind = Kind::other;
  /// The bytes of the value: from `begin` to before `end`.
  std::size_t begin = 0;
  std::size_t end = 0;
  /// Where the member begins, with its key; `begin` for everything that is no member.
  std::size_t start = 0;
  /// The key of a member, its escapes resolved.
  std::string key;
  /// 0 for the document.
  std::size_t depth = 0;
  std::vector<JsonPlace> children;

  /// The member of this key that counts: the last one. Null when there is none.
  [[nodiscard]] const JsonPlace* find(std::string_view wanted) const;
};

/// The places of a whole document; none when parseJson refuses it.
[[nodiscard]] std::optional<JsonPlace> placesOf(std::string_view json);

/// The value at a string's place; empty for every other kind.
[[nodiscard]] std::string stringAt(std::string_view json, const JsonPlace& place);

/// `json` with a member, or an element, at the end of the object or array, laid out as the document is.
[[nodiscard]] std::string withMember(std::string_view json, const JsonPlace& object, const JsonMember& member);
[[nodiscard]] std::string withElement(std::string_view json, const JsonPlace& array, const JsonValue& element);

/// `json` with another value in the place.
[[nodiscard]] std::string withValue(std::string_view json, const JsonPlace& place, const JsonValue& value);

/// `json` without the child of this number and the comma that goes with it.
[[nodiscard]] std::string withoutChild(std::string_view json, const JsonPlace& container, std::size_t index);

}  // namespace brindle
