// Whatever the bytes: characters add up to the text, pieces hold no newline, trimming and lower case settle at once.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "base/json_reader.h"
#include "base/json_writer.h"
#include "base/text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace brindle;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const std::size_t count = characterCount(text);
  if (firstCharacters(text, count) != text) std::abort();
  if (count > 0 && firstCharacters(text, count - 1).size() >= text.size()) std::abort();
  for (const std::string_view piece : newlinePieces(text)) {
    if (piece.empty() || piece.find('\n') != std::string_view::npos) std::abort();
  }
  const std::string_view trimmed = trimWhiteSpace(text);
  if (trimWhiteSpace(trimmed) != trimmed) std::abort();
  const std::string lower = lowerCase(text);
  if (lowerCase(lower) != lower || isValidUtf8(lower) != isValidUtf8(text)) std::abort();
  (void)lastPathComponent(text);
  const auto literal = parseJson(writeJsonString(text));
  if (!literal || literal->string() == nullptr) std::abort();
  if (isValidUtf8(text) && *literal->string() != text) std::abort();
  return 0;
}
