#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include "base/iso8601.h"
#include "base/json_writer.h"
#include "base/text.h"

namespace brindle {
namespace {

/// Bytes among which whole characters, newlines and broken sequences are frequent.
rc::Gen<std::string> anyBytes() {
  const auto piece = rc::gen::oneOf(
      rc::gen::map(rc::gen::inRange(0, 256), [](int byte) { return std::string(1, static_cast<char>(byte)); }),
      rc::gen::element<std::string>("\r\n", "\n", "\xE2\x80\xA8", "e\xCC\x81", "👨‍👩‍👧", "🇫🇷", "\xC4\xB0",
                                    " ", "\xC2\xA0"));
  return rc::gen::map(rc::gen::container<std::vector<std::string>>(piece),
                      [](const std::vector<std::string>& pieces) { return joined(pieces, ""); });
}

RC_GTEST_PROP(Text, CutsEveryTextIntoItsCharacters, ()) {
  const std::string text = *anyBytes();
  const std::size_t count = characterCount(text);
  std::size_t length = 0;
  for (std::size_t characters = 0; characters <= count; ++characters) {
    const std::string_view first = firstCharacters(text, characters);
    RC_ASSERT(text.starts_with(first));
    RC_ASSERT(characters == 0 || first.size() > length);
    length = first.size();
  }
  RC_ASSERT(length == text.size());
}

RC_GTEST_PROP(Text, LeavesNoNewlineInAPiece, ()) {
  const std::string text = *anyBytes();
  for (const std::string_view piece : newlinePieces(text)) {
    RC_ASSERT(!piece.empty());
    RC_ASSERT(piece.find('\n') == std::string_view::npos);
    RC_ASSERT(newlinePieces(piece) == std::vector<std::string_view>{piece});
  }
}

RC_GTEST_PROP(Text, TrimsOnceAndForAll, ()) {
  const std::string text = *anyBytes();
  const std::string_view trimmed = trimWhiteSpace(text);
  RC_ASSERT(trimWhiteSpace(trimmed) == trimmed);
  RC_ASSERT(text.find(trimmed) != std::string::npos);
}

RC_GTEST_PROP(Text, StaysValidInLowerCase, ()) {
  const std::string text = *anyBytes();
  const std::string lower = lowerCase(text);
  RC_ASSERT(isValidUtf8(lower) == isValidUtf8(text));
  RC_ASSERT(lowerCase(lower) == lower);
}

RC_GTEST_PROP(Text, IsAlwaysValidAsAStringLiteral, ()) { RC_ASSERT(isValidUtf8(writeJsonString(*anyBytes()))); }

RC_GTEST_PROP(Text, HasALastPathComponentWithoutSlash, ()) {
  const std::string path = *rc::gen::container<std::string>(rc::gen::element('/', 'a', '.', ' '));
  const std::string last = lastPathComponent(path);
  RC_ASSERT(path == "/" || last.find('/') == std::string::npos);
}

RC_GTEST_PROP(Iso8601, ReadsBackWholeSeconds, ()) {
  const auto seconds = static_cast<double>(*rc::gen::inRange<std::int64_t>(-62135769600, 253402300800));
  RC_ASSERT(readIso8601(writeIso8601(dateFromSeconds(seconds))) == dateFromSeconds(seconds));
}

RC_GTEST_PROP(Iso8601, AnswersForArbitraryBytes, (const std::string& text)) {
  if (const auto date = readIso8601(text)) RC_ASSERT(readIso8601(writeIso8601(*date)) == date);
  if (const auto date = readIso8601WithFraction(text)) RC_ASSERT(secondsSince1970(*date) < 1e12);
}

}  // namespace
}  // namespace brindle
