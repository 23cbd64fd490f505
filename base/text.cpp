#include "base/text.h"

#include <utf8proc.h>

#include <algorithm>
#include <array>

#include "base/indic_conjunct.h"

namespace brindle {
namespace {

struct Scalar {
  utf8proc_int32_t value = -1;  // -1 for a byte that belongs to no scalar
  std::size_t length = 1;
};

/// Precondition: `text` is not empty.
Scalar firstScalar(std::string_view text) {
  const auto first = static_cast<unsigned char>(text.front());
  if (first < 0x80) return {first, 1};
  utf8proc_int32_t value = -1;
  const auto size = static_cast<utf8proc_ssize_t>(std::min<std::size_t>(text.size(), 4));
  const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()), size, &value);
  if (length <= 0) return {};
  return {value, static_cast<std::size_t>(length)};
}

bool isAscii(utf8proc_int32_t value) { return value >= 0 && value < 0x80; }

/// Walks over user-perceived characters, one a step.
class CharacterWalk {
 public:
  explicit CharacterWalk(std::string_view text) : text_(text) {}

  [[nodiscard]] bool atEnd() const { return position_ == text_.size(); }
  [[nodiscard]] std::size_t position() const { return position_; }

  /// Precondition: not at the end.
  void step() {
    Scalar previous = firstScalar(text_.substr(position_));
    position_ += previous.length;
    utf8proc_int32_t state = 0;
    IndicConjunct conjunct;
    (void)conjunct.continuesWith(previous.value);
    while (position_ < text_.size()) {
      const Scalar next = firstScalar(text_.substr(position_));
      const bool joined = conjunct.continuesWith(next.value);
      if (breaksBetween(previous.value, next.value, state) && !joined) return;
      position_ += next.length;
      previous = next;
    }
  }

 private:
  static bool breaksBetween(utf8proc_int32_t previous, utf8proc_int32_t next, utf8proc_int32_t& state) {
    if (previous < 0 || next < 0) return true;
    if (isAscii(previous) && isAscii(next)) return previous != '\r' || next != '\n';
    return utf8proc_grapheme_break_stateful(previous, next, &state) != 0;
  }

  std::string_view text_;
  std::size_t position_ = 0;
};

bool isNewline(utf8proc_int32_t value) {
  return (value >= 0x0A && value <= 0x0D) || value == 0x85 || value == 0x2028 || value == 0x2029;
}

bool isWhiteSpace(utf8proc_int32_t value) {
  return (value >= 0x09 && value <= 0x0D) || value == 0x20 || value == 0x85 || value == 0xA0 || value == 0x1680 ||
         (value >= 0x2000 && value <= 0x200A) || value == 0x2028 || value == 0x2029 || value == 0x202F ||
         value == 0x205F || value == 0x3000;
}

constexpr utf8proc_int32_t kCapitalIWithDot = 0x130;
constexpr std::string_view kLowerIWithDot = "i\xCC\x87";

}  // namespace

std::size_t characterCount(std::string_view text) {
  std::size_t count = 0;
  for (CharacterWalk walk(text); !walk.atEnd(); walk.step()) ++count;
  return count;
}

std::string_view firstCharacters(std::string_view text, std::size_t count) {
  CharacterWalk walk(text);
  for (; count > 0 && !walk.atEnd(); --count) walk.step();
  return text.substr(0, walk.position());
}

std::vector<std::string_view> newlinePieces(std::string_view text) {
  // A newline scalar always stands alone, but for "\r\n": walking over scalars finds the same pieces.
  std::vector<std::string_view> pieces;
  std::size_t start = 0;
  std::size_t position = 0;
  while (position < text.size()) {
    const Scalar scalar = firstScalar(text.substr(position));
    if (isNewline(scalar.value)) {
      if (position > start) pieces.push_back(text.substr(start, position - start));
      start = position + scalar.length;
    }
    position += scalar.length;
  }
  if (start < text.size()) pieces.push_back(text.substr(start));
  return pieces;
}

std::string_view trimWhiteSpace(std::string_view text) {
  while (!text.empty()) {
    const Scalar scalar = firstScalar(text);
    if (!isWhiteSpace(scalar.value)) break;
    text.remove_prefix(scalar.length);
  }
  while (!text.empty()) {
    std::size_t start = text.size() - 1;
    while (start > 0 && text.size() - start < 4 && (static_cast<unsigned char>(text[start]) & 0xC0) == 0x80) --start;
    const Scalar scalar = firstScalar(text.substr(start));
    if (!isWhiteSpace(scalar.value) || start + scalar.length != text.size()) break;
    text.remove_suffix(scalar.length);
  }
  return text;
}

std::string lowerCase(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const Scalar scalar = firstScalar(text);
    if (scalar.value >= 'A' && scalar.value <= 'Z') {
      result += static_cast<char>(scalar.value - 'A' + 'a');
    } else if (scalar.value < 0x80) {
      result += text.front();
    } else if (scalar.value == kCapitalIWithDot) {
      result += kLowerIWithDot;
    } else {
      std::array<utf8proc_uint8_t, 4> bytes{};
      const auto length = utf8proc_encode_char(utf8proc_tolower(scalar.value), bytes.data());
      result.append(reinterpret_cast<const char*>(bytes.data()), static_cast<std::size_t>(length));
    }
    text.remove_prefix(scalar.length);
  }
  return result;
}

bool beginsWithAnyCase(std::string_view text, std::string_view lowerPrefix) {
  if (text.size() < lowerPrefix.size()) return false;
  return std::equal(lowerPrefix.begin(), lowerPrefix.end(), text.begin(), [](char lower, char given) {
    const bool isCapital = given >= 'A' && given <= 'Z';
    return (isCapital ? static_cast<char>(given - 'A' + 'a') : given) == lower;
  });
}

std::size_t scalarLength(std::string_view text) {
  if (text.empty()) return 0;
  const Scalar scalar = firstScalar(text);
  return scalar.value < 0 ? 0 : scalar.length;
}

bool isValidUtf8(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = scalarLength(text);
    if (length == 0) return false;
    text.remove_prefix(length);
  }
  return true;
}

std::string lastPathComponent(std::string_view path) {
  if (path == "/") return "/";
  while (path.ends_with('/')) path.remove_suffix(1);
  const std::size_t slash = path.rfind('/');
  return std::string(slash == std::string_view::npos ? path : path.substr(slash + 1));
}

std::string joined(const std::vector<std::string>& parts, std::string_view separator) {
  std::string result;
  for (std::size_t index = 0; index < parts.size(); ++index) {
    if (index > 0) result += separator;
    result += parts[index];
  }
  return result;
}

}  // namespace brindle
