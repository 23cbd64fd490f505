#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include "base/json_reader.h"
#include "base/json_writer.h"
#include "base/number_text.h"

namespace rc {

template <>
struct Arbitrary<brindle::JsonStyle> {
  static Gen<brindle::JsonStyle> arbitrary() {
    return gen::apply(
        [](bool pretty, bool sorted, bool slashes) {
          return brindle::JsonStyle{pretty, sorted, slashes};
        },
        gen::arbitrary<bool>(), gen::arbitrary<bool>(), gen::arbitrary<bool>());
  }
};

}  // namespace rc

namespace brindle {
namespace {

/// Text of whole scalars: ASCII, control characters, and some of each length.
rc::Gen<std::string> anyText() {
  const auto piece = rc::gen::oneOf(
      rc::gen::map(rc::gen::inRange(0, 128), [](int byte) { return std::string(1, static_cast<char>(byte)); }),
      rc::gen::element<std::string>("é", "\xE2\x80\xA8", "😀", "\xEF\xBF\xBD", "\xF4\x8F\xBF\xBF", "/", "\"", "\\"));
  return rc::gen::map(rc::gen::container<std::vector<std::string>>(piece), [](const std::vector<std::string>& pieces) {
    std::string text;
    for (const std::string& each : pieces) text += each;
    return text;
  });
}

rc::Gen<JsonValue> anyScalar() {
  return rc::gen::oneOf(
      rc::gen::just(JsonValue()), rc::gen::map(rc::gen::arbitrary<bool>(), [](bool value) { return JsonValue(value); }),
      rc::gen::map(rc::gen::arbitrary<std::int64_t>(), [](std::int64_t value) { return JsonValue(value); }),
      rc::gen::map(rc::gen::arbitrary<double>(), [](double value) { return JsonValue(value); }),
      rc::gen::map(anyText(), [](std::string value) { return JsonValue(std::move(value)); }));
}

rc::Gen<JsonValue> anyValue(int depth) {
  if (depth == 0) return anyScalar();
  const auto inner = anyValue(depth - 1);
  const auto arrays = rc::gen::map(rc::gen::resize(4, rc::gen::container<std::vector<JsonValue>>(inner)),
                                   [](JsonArray elements) { return JsonValue(std::move(elements)); });
  const auto objects = rc::gen::map(
      rc::gen::resize(
          4, rc::gen::container<std::vector<std::pair<std::string, JsonValue>>>(rc::gen::pair(anyText(), inner))),
      [](const std::vector<std::pair<std::string, JsonValue>>& members) {
        JsonObject object;
        for (const auto& [key, value] : members) object.set(key, value);
        return JsonValue(std::move(object));
      });
  return rc::gen::oneOf(anyScalar(), arrays, objects);
}

/// The same document with the members of every object in the order of their keys.
JsonValue sorted(const JsonValue& value) { return *parseJson(writeJson(value, {.sortedKeys = true})); }

RC_GTEST_PROP(JsonRoundTrip, ReadsBackEveryValueThatIsWritten, ()) {
  const JsonValue value = *anyValue(3);
  JsonStyle style = *rc::gen::arbitrary<JsonStyle>();
  const auto back = parseJson(writeJson(value, style));
  RC_ASSERT(back.has_value());
  RC_ASSERT(*back == (style.sortedKeys ? sorted(value) : value));
}

RC_GTEST_PROP(JsonRoundTrip, WritesTheSameTextASecondTime, ()) {
  const std::string text = writeJson(*anyValue(3), *rc::gen::arbitrary<JsonStyle>());
  const auto once = parseJson(text);
  RC_ASSERT(once.has_value());
  RC_ASSERT(parseJson(writeJson(*once)) == once);
}

RC_GTEST_PROP(JsonReader, AnswersForArbitraryBytes, (const std::vector<std::uint8_t>& bytes)) {
  const std::string text(bytes.begin(), bytes.end());
  if (const auto value = parseJson(text)) RC_ASSERT(parseJson(writeJson(*value)) == value);
}

RC_GTEST_PROP(JsonReader, AnswersForArbitraryTokens, ()) {
  const auto token = rc::gen::element<std::string>("{", "}", "[", "]", ",", ":", "\"a\"", "1", "-", "1.5e", "true", " ",
                                                   "null", "\"", "\\u", "d83d", "\xEF\xBB\xBF", "\xFF");
  std::string text;
  for (const std::string& each : *rc::gen::container<std::vector<std::string>>(token)) text += each;
  if (const auto value = parseJson(text)) RC_ASSERT(parseJson(writeJson(*value)) == value);
}

RC_GTEST_PROP(DoubleText, ReadsBackExactly, (double value)) { RC_ASSERT(doubleFromText(doubleText(value)) == value); }

RC_GTEST_PROP(JsonNumber, AgreesOnIntegersHoweverTheyAreWritten, (std::int64_t value)) {
  RC_ASSERT(JsonNumber::fromText(std::to_string(value) + ".000").integer() == value);
  RC_ASSERT(JsonNumber::fromText(std::to_string(value) + "000e-3").integer() == value);
}

}  // namespace
}  // namespace brindle
