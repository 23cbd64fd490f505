#include "logic/widget/widget_feed.h"

#include "base/file.h"
#include "base/json_reader.h"
#include "base/json_writer.h"

namespace brindle::WidgetFeed {
namespace {

constexpr std::size_t kByteLimit = std::size_t{1} << 20;

std::string pathIn(const std::string& container) { return container + "/" + std::string(kFileName); }

}  // namespace

std::string encodeText(const WidgetSnapshot& snapshot) {
  return writeJson(encode(snapshot), JsonStyle{.sortedKeys = true});
}

std::optional<WidgetSnapshot> decodeText(std::string_view text) {
  const std::optional<JsonValue> document = parseJson(text);
  const JsonObject* object = document ? document->object() : nullptr;
  return object == nullptr ? std::nullopt : decodeWidgetSnapshot(*object);
}

Outcome write(const Container& container, const WidgetSnapshot& snapshot) {
  if (!container) return {};
  if (const Outcome folder = ensureFolder(*container); !folder) return folder;
  return replaceFile(pathIn(*container), encodeText(snapshot));
}

std::optional<WidgetSnapshot> read(const Container& container) {
  if (!container) return std::nullopt;
  const Result<std::string> text = readFile(pathIn(*container), kByteLimit);
  return text ? decodeText(*text) : std::nullopt;
}

}  // namespace brindle::WidgetFeed
