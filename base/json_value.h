// A JSON document in memory: members keep their order, numbers keep their text.
//
// Made by JsonReader (outside input) and by the encoders of records; read by their decoders; turned into bytes by
// JsonWriter. Plain values without shared state: safe on any thread, one thread a value.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace brindle {

class JsonValue;
struct JsonMember;

/// A number as it stood in the document. `text` is always a valid JSON number.
class JsonNumber {
 public:
  JsonNumber(std::int64_t value);
  /// A finite double in the platform encoder's text: shortest round-trip form, whole values without ".0".
  /// Precondition: finite; JSON has no text for NaN and the infinities.
  explicit JsonNumber(double value);
  /// Takes over the text of a document. Precondition: `text` matches the JSON grammar of a number.
  [[nodiscard]] static JsonNumber fromText(std::string text);

  [[nodiscard]] const std::string& text() const { return text_; }
  /// The exact value when it is whole ("3", "3.0" and "3e0" alike) and fits 64 signed bits; else none.
  [[nodiscard]] std::optional<std::int64_t> integer() const;
  /// The nearest double; none when the magnitude is beyond the range of a double.
  [[nodiscard]] std::optional<double> real() const;

  bool operator==(const JsonNumber&) const = default;

 private:
  JsonNumber() = default;
  std::string text_;
};

using JsonArray = std::vector<JsonValue>;

/// The members of an object in the order of their first appearance; each key at most once.
class JsonObject {
 public:
  JsonObject();
  /// Precondition: no key twice.
  JsonObject(std::initializer_list<JsonMember> members);
  JsonObject(const JsonObject&);
  JsonObject(JsonObject&&) noexcept;
  JsonObject& operator=(const JsonObject&);
  JsonObject& operator=(JsonObject&&) noexcept;
  ~JsonObject();

  /// The members of a document: of duplicate keys the last value wins, in the place of the first.
  [[nodiscard]] static JsonObject fromMembers(std::vector<JsonMember> members);

  /// The value of `key`, or null when the key is absent. Valid until the object changes.
  [[nodiscard]] const JsonValue* find(std::string_view key) const;
  /// Adds the member at the end, or replaces the value of an existing key in its place (the last one wins).
  void set(std::string key, JsonValue value);
  /// Adds a member whose key the caller knows to be new; what encoders of records use.
  void append(std::string key, JsonValue value);
  /// Takes the member away; false when there is none.
  bool erase(std::string_view key);

  [[nodiscard]] const std::vector<JsonMember>& members() const { return members_; }
  [[nodiscard]] bool empty() const;
  [[nodiscard]] std::size_t size() const;

  bool operator==(const JsonObject&) const;

 private:
  std::vector<JsonMember> members_;
};

/// Any JSON value. The accessors answer null or none for another type: no coercion, a Boolean is not a number.
class JsonValue {
 public:
  JsonValue() = default;  // null
  JsonValue(std::nullptr_t) {}
  JsonValue(bool value) : value_(value) {}
  JsonValue(int value) : value_(JsonNumber(std::int64_t{value})) {}
  JsonValue(std::int64_t value) : value_(JsonNumber(value)) {}
  JsonValue(double value) : value_(JsonNumber(value)) {}
  JsonValue(JsonNumber value) : value_(std::move(value)) {}
  JsonValue(std::string value) : value_(std::move(value)) {}
  JsonValue(std::string_view value) : value_(std::string(value)) {}
  JsonValue(const char* value) : value_(std::string(value)) {}
  JsonValue(JsonArray value) : value_(std::move(value)) {}
  JsonValue(JsonObject value) : value_(std::move(value)) {}

  [[nodiscard]] bool isNull() const { return std::holds_alternative<std::nullptr_t>(value_); }
  [[nodiscard]] std::optional<bool> boolean() const;
  [[nodiscard]] const JsonNumber* number() const { return std::get_if<JsonNumber>(&value_); }
  [[nodiscard]] const std::string* string() const { return std::get_if<std::string>(&value_); }
  [[nodiscard]] const JsonArray* array() const { return std::get_if<JsonArray>(&value_); }
  [[nodiscard]] const JsonObject* object() const { return std::get_if<JsonObject>(&value_); }
  [[nodiscard]] JsonArray* array() { return std::get_if<JsonArray>(&value_); }
  [[nodiscard]] JsonObject* object() { return std::get_if<JsonObject>(&value_); }

  bool operator==(const JsonValue&) const = default;

 private:
  std::variant<std::nullptr_t, bool, JsonNumber, std::string, JsonArray, JsonObject> value_ = nullptr;
};

struct JsonMember {
  std::string key;
  JsonValue value;

  bool operator==(const JsonMember&) const = default;
};

// Only here is a member complete, as the vector's arithmetic needs it.
inline bool JsonObject::empty() const { return members_.empty(); }
inline std::size_t JsonObject::size() const { return members_.size(); }

}  // namespace brindle
