#include "base/json_value.h"

#include <algorithm>
#include <limits>

#include "base/number_text.h"

namespace brindle {
namespace {

// Objects up to this size are searched for duplicate keys pair by pair, larger ones by sorting.
constexpr std::size_t kPairwiseMembers = 12;

/// A decimal number taken apart: digits × 10^exponent, without zeros at either end of the digits.
struct Decimal {
  bool negative = false;
  std::string digits;
  std::int64_t exponent = 0;
};

// Exponents beyond this are the same as this one to any digits that fit a document.
constexpr std::int64_t kExponentCap = std::int64_t{1} << 40;

Decimal takeApart(std::string_view text) {
  Decimal result;
  std::size_t position = 0;
  if (text.starts_with('-')) {
    result.negative = true;
    position = 1;
  }
  bool fraction = false;
  for (; position < text.size() && text[position] != 'e' && text[position] != 'E'; ++position) {
    if (text[position] == '.') {
      fraction = true;
      continue;
    }
    if (fraction) --result.exponent;
    if (!result.digits.empty() || text[position] != '0') result.digits.push_back(text[position]);
  }
  if (position < text.size()) {
    ++position;
    const bool down = text[position] == '-';
    if (down || text[position] == '+') ++position;
    std::int64_t exponent = 0;
    for (; position < text.size(); ++position) {
      exponent = std::min(exponent * 10 + (text[position] - '0'), kExponentCap);
    }
    result.exponent += down ? -exponent : exponent;
  }
  while (!result.digits.empty() && result.digits.back() == '0') {
    result.digits.pop_back();
    ++result.exponent;
  }
  return result;
}

void keepLastOfEachKeyPairwise(std::vector<JsonMember>& members) {
  std::size_t kept = 0;
  for (std::size_t next = 0; next < members.size(); ++next) {
    const auto end = members.begin() + static_cast<std::ptrdiff_t>(kept);
    const auto first =
        std::find_if(members.begin(), end, [&](const JsonMember& member) { return member.key == members[next].key; });
    if (first != end) {
      first->value = std::move(members[next].value);
    } else {
      if (kept != next) members[kept] = std::move(members[next]);
      ++kept;
    }
  }
  members.erase(members.begin() + static_cast<std::ptrdiff_t>(kept), members.end());
}

void keepLastOfEachKeyBySorting(std::vector<JsonMember>& members) {
  std::vector<std::size_t> order(members.size());
  for (std::size_t index = 0; index < order.size(); ++index) order[index] = index;
  std::stable_sort(order.begin(), order.end(),
                   [&](std::size_t a, std::size_t b) { return members[a].key < members[b].key; });
  std::vector<bool> gone(members.size());
  bool any = false;
  for (std::size_t start = 0; start < order.size();) {
    std::size_t end = start + 1;
    while (end < order.size() && members[order[end]].key == members[order[start]].key) gone[order[end++]] = true;
    if (end - start > 1) {
      members[order[start]].value = std::move(members[order[end - 1]].value);
      any = true;
    }
    start = end;
  }
  if (!any) return;
  std::vector<JsonMember> kept;
  for (std::size_t index = 0; index < members.size(); ++index) {
    if (!gone[index]) kept.push_back(std::move(members[index]));
  }
  members = std::move(kept);
}

}  // namespace

JsonNumber::JsonNumber(std::int64_t value) : text_(std::to_string(value)) {}

JsonNumber::JsonNumber(double value) : text_(doubleText(value)) {}

JsonNumber JsonNumber::fromText(std::string text) {
  JsonNumber number;
  number.text_ = std::move(text);
  return number;
}

std::optional<std::int64_t> JsonNumber::integer() const {
  if (const auto plain = integerFromText(text_)) return plain;
  Decimal decimal = takeApart(text_);
  if (decimal.digits.empty()) return 0;
  constexpr std::size_t kMostDigits = std::numeric_limits<std::int64_t>::digits10 + 1;
  if (decimal.exponent < 0 || decimal.digits.size() > kMostDigits) return std::nullopt;
  const std::size_t room = kMostDigits - decimal.digits.size();
  if (decimal.exponent > static_cast<std::int64_t>(room)) return std::nullopt;
  decimal.digits.append(static_cast<std::size_t>(decimal.exponent), '0');
  if (decimal.negative) decimal.digits.insert(0, 1, '-');
  return integerFromText(decimal.digits);
}

std::optional<double> JsonNumber::real() const { return doubleFromText(text_); }

JsonObject::JsonObject() = default;
JsonObject::JsonObject(std::initializer_list<JsonMember> members) : members_(members) {}
JsonObject::JsonObject(const JsonObject&) = default;
JsonObject::JsonObject(JsonObject&&) noexcept = default;
JsonObject& JsonObject::operator=(const JsonObject&) = default;
JsonObject& JsonObject::operator=(JsonObject&&) noexcept = default;
JsonObject::~JsonObject() = default;

JsonObject JsonObject::fromMembers(std::vector<JsonMember> members) {
  if (members.size() <= kPairwiseMembers) {
    keepLastOfEachKeyPairwise(members);
  } else {
    keepLastOfEachKeyBySorting(members);
  }
  JsonObject object;
  object.members_ = std::move(members);
  return object;
}

const JsonValue* JsonObject::find(std::string_view key) const {
  for (const JsonMember& member : members_) {
    if (member.key == key) return &member.value;
  }
  return nullptr;
}

void JsonObject::set(std::string key, JsonValue value) {
  for (JsonMember& member : members_) {
    if (member.key == key) {
      member.value = std::move(value);
      return;
    }
  }
  append(std::move(key), std::move(value));
}

void JsonObject::append(std::string key, JsonValue value) {
  members_.push_back(JsonMember{std::move(key), std::move(value)});
}

bool JsonObject::erase(std::string_view key) {
  const auto found =
      std::find_if(members_.begin(), members_.end(), [&](const auto& member) { return member.key == key; });
  if (found == members_.end()) return false;
  members_.erase(found);
  return true;
}

bool JsonObject::operator==(const JsonObject& other) const { return members_ == other.members_; }

std::optional<bool> JsonValue::boolean() const {
  const bool* value = std::get_if<bool>(&value_);
  return value == nullptr ? std::nullopt : std::optional<bool>(*value);
}

}  // namespace brindle
