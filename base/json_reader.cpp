#include "base/json_reader.h"

#include <array>
#include <charconv>
#include <nlohmann/json.hpp>

namespace brindle {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// Receives the tokens of one document and builds the value. Values whose container is still open wait on one
/// stack, so that every container is allocated once, with its final size.
class DocumentBuilder {
 public:
  using number_integer_t = nlohmann::json::number_integer_t;
  using number_unsigned_t = nlohmann::json::number_unsigned_t;
  using number_float_t = nlohmann::json::number_float_t;
  using string_t = nlohmann::json::string_t;
  using binary_t = nlohmann::json::binary_t;

  bool null() { return add(JsonValue()); }
  bool boolean(bool value) { return add(JsonValue(value)); }
  bool number_integer(number_integer_t value) {
    // The grammar has one text for every whole number but zero, and only "-0" comes here as zero.
    if (value == 0) return add(JsonNumber::fromText("-0"));
    return add(JsonNumber(std::int64_t{value}));
  }
  bool number_unsigned(number_unsigned_t value) {
    std::array<char, 24> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    return add(JsonNumber::fromText(std::string(digits.data(), end)));
  }
  bool number_float(number_float_t, const string_t& token) {
    std::string text = token;
    for (char& c : text) {
      // The tokenizer puts the locale's decimal point where the document had ".".
      const bool known = (c >= '0' && c <= '9') || c == '-' || c == '+' || c == 'e' || c == 'E';
      if (!known) c = '.';
    }
    return add(JsonNumber::fromText(std::move(text)));
  }
  bool string(const string_t& value) { return add(JsonValue(std::string_view(value))); }
  bool binary(binary_t&) { return false; }
  bool start_object(std::size_t) { return open(); }
  bool start_array(std::size_t) { return open(); }
  bool key(const string_t& name) {
    pending_.push_back(JsonMember{name, JsonValue()});
    keyWaits_ = true;
    return true;
  }
  bool end_object() {
    const auto first = firstOfInnermost();
    std::vector<JsonMember> members(std::make_move_iterator(first), std::make_move_iterator(pending_.end()));
    return close(JsonObject::fromMembers(std::move(members)));
  }
  bool end_array() {
    JsonArray elements;
    const auto first = firstOfInnermost();
    elements.reserve(static_cast<std::size_t>(pending_.end() - first));
    for (auto element = first; element != pending_.end(); ++element) elements.push_back(std::move(element->value));
    return close(std::move(elements));
  }
  bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) { return false; }

  [[nodiscard]] JsonValue take() { return std::move(pending_.front().value); }

 private:
  struct Container {
    std::size_t start;
    bool isMember;
  };

  std::vector<JsonMember>::iterator firstOfInnermost() {
    return pending_.begin() + static_cast<std::ptrdiff_t>(open_.back().start);
  }

  bool add(JsonValue value) {
    if (++nodes_ > kJsonNodeLimit) return false;
    place(std::move(value));
    return true;
  }

  void place(JsonValue value) {
    if (keyWaits_) {
      pending_.back().value = std::move(value);
      keyWaits_ = false;
    } else {
      pending_.push_back(JsonMember{{}, std::move(value)});
    }
  }

  bool open() {
    if (++nodes_ > kJsonNodeLimit || open_.size() == kJsonDepthLimit) return false;
    open_.push_back({pending_.size(), keyWaits_});
    keyWaits_ = false;
    return true;
  }

  bool close(JsonValue container) {
    pending_.erase(firstOfInnermost(), pending_.end());
    keyWaits_ = open_.back().isMember;
    open_.pop_back();
    place(std::move(container));
    return true;
  }

  std::vector<JsonMember> pending_;
  std::vector<Container> open_;
  std::size_t nodes_ = 0;
  bool keyWaits_ = false;
};

}  // namespace

std::optional<JsonValue> parseJson(std::string_view text) {
  if (text.size() > kJsonByteLimit) return std::nullopt;
  // A NUL is never part of a document, but the tokenizer takes it for the end of one.
  if (text.find('\0') != std::string_view::npos) return std::nullopt;
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  if (text.starts_with(kByteOrderMark)) return std::nullopt;
  DocumentBuilder builder;
  if (!nlohmann::json::sax_parse(text.data(), text.data() + text.size(), &builder)) return std::nullopt;
  return builder.take();
}

}  // namespace brindle
