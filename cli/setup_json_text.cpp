#include "cli/setup_json_text.h"

#include <algorithm>

#include "base/json_reader.h"
#include "base/json_writer.h"

namespace brindle {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr JsonStyle kPlain = {.escapeSlashes = false};

/// Walks over a text that is known to be a JSON document, no deeper than kJsonDepthLimit.
class Walk {
 public:
  explicit Walk(std::string_view text) : text_(text), at_(text.starts_with(kByteOrderMark) ? 3 : 0) {}

  JsonPlace value(std::size_t depth) {
    skipBlanks();
    JsonPlace place;
    place.depth = depth;
    place.begin = place.start = at_;
    if (text_[at_] == '{' || text_[at_] == '[') {
      place.kind = text_[at_] == '{' ? JsonPlace::Kind::object : JsonPlace::Kind::array;
      children(place);
    } else if (text_[at_] == '"') {
      place.kind = JsonPlace::Kind::string;
      skipString();
    } else {
      at_ = std::min(text_.find_first_of(",]} \t\r\n", at_), text_.size());
    }
    place.end = at_;
    return place;
  }

 private:
  void children(JsonPlace& place) {
    const char closing = place.kind == JsonPlace::Kind::object ? '}' : ']';
    ++at_;
    skipBlanks();
    while (text_[at_] != closing) {
      const std::size_t start = at_;
      std::string key;
      if (place.kind == JsonPlace::Kind::object) key = memberKey();
      place.children.push_back(value(place.depth + 1));
      if (place.kind == JsonPlace::Kind::object) {
        place.children.back().start = start;
        place.children.back().key = std::move(key);
      }
      skipBlanks();
      if (text_[at_] == ',') ++at_;
      skipBlanks();
    }
    ++at_;
  }

  std::string memberKey() {
    const std::size_t begin = at_;
    skipString();
    const auto key = parseJson(text_.substr(begin, at_ - begin));
    skipBlanks();
    ++at_;  // the colon
    return key && key->string() != nullptr ? *key->string() : std::string();
  }

  void skipString() {
    for (++at_; text_[at_] != '"'; ++at_) {
      if (text_[at_] == '\\') ++at_;
    }
    ++at_;
  }

  void skipBlanks() {
    while (at_ < text_.size() && std::string_view(" \t\r\n").find(text_[at_]) != std::string_view::npos) ++at_;
  }

  std::string_view text_;
  std::size_t at_;
};

/// How a document is laid out; with an empty `lineEnd` it is all on one line.
struct Layout {
  std::string lineEnd;
  std::string indent;

  [[nodiscard]] std::string lineAt(std::size_t depth) const {
    std::string text = lineEnd;
    if (lineEnd.empty()) return text;
    for (std::size_t level = 0; level < depth; ++level) text += indent;
    return text;
  }
};

Layout layoutOf(std::string_view json) {
  const JsonPlace root = *placesOf(json);
  Layout layout{.lineEnd = "\n", .indent = "  "};
  if (json.find("\r\n") != std::string_view::npos) layout.lineEnd = "\r\n";
  if (root.children.empty()) return layout;
  const std::size_t first = root.children.front().start;
  const std::size_t line = json.substr(0, first).rfind('\n');
  if (line == std::string_view::npos || line < root.begin) return {};
  const std::string_view before = json.substr(line + 1, first - line - 1);
  if (!before.empty() && before.find_first_not_of(" \t") == std::string_view::npos) layout.indent = before;
  return layout;
}

std::string laidOut(const JsonValue& value, const Layout& layout, std::size_t depth) {
  const JsonObject* object = value.object();
  const JsonArray* array = value.array();
  const bool holdsNone = (object == nullptr || object->empty()) && (array == nullptr || array->empty());
  if (layout.lineEnd.empty() || holdsNone) return writeJson(value, kPlain);
  std::string text;
  const auto begin = [&] { text += (text.empty() ? "" : ",") + layout.lineAt(depth + 1); };
  if (object != nullptr) {
    for (const JsonMember& member : object->members()) {
      begin();
      text += writeJsonString(member.key, kPlain) + ": " + laidOut(member.value, layout, depth + 1);
    }
    return "{" + text + layout.lineAt(depth) + "}";
  }
  for (const JsonValue& element : *array) {
    begin();
    text += laidOut(element, layout, depth + 1);
  }
  return "[" + text + layout.lineAt(depth) + "]";
}

struct Splice {
  std::size_t begin;
  std::size_t end;
  std::string text;
};

std::string spliced(std::string_view json, const Splice& splice) {
  return std::string(json.substr(0, splice.begin)) + splice.text + std::string(json.substr(splice.end));
}

/// The layout for what is added to the container: one that stands on one line stays there.
Layout layoutIn(std::string_view json, const JsonPlace& container) {
  const std::string_view text = json.substr(container.begin, container.end - container.begin);
  if (!container.children.empty() && text.find('\n') == std::string_view::npos) return {};
  return layoutOf(json);
}

std::string withChild(std::string_view json, const JsonPlace& container, const Layout& layout,
                      const std::string& child) {
  const std::string line = layout.lineAt(container.depth + 1);
  if (container.children.empty()) {
    return spliced(json, {container.begin + 1, container.end - 1, line + child + layout.lineAt(container.depth)});
  }
  const std::size_t at = container.children.back().end;
  return spliced(json, {at, at, "," + line + child});
}

}  // namespace

const JsonPlace* JsonPlace::find(std::string_view wanted) const {
  if (kind != Kind::object) return nullptr;
  for (auto child = children.rbegin(); child != children.rend(); ++child) {
    if (child->key == wanted) return &*child;
  }
  return nullptr;
}

std::optional<JsonPlace> placesOf(std::string_view json) {
  if (!parseJson(json)) return std::nullopt;
  return Walk(json).value(0);
}

std::string stringAt(std::string_view json, const JsonPlace& place) {
  const auto value = parseJson(json.substr(place.begin, place.end - place.begin));
  return value && value->string() != nullptr ? *value->string() : std::string();
}

std::string withMember(std::string_view json, const JsonPlace& object, const JsonMember& member) {
  const Layout layout = layoutIn(json, object);
  const std::string colon = layout.lineEnd.empty() ? ":" : ": ";
  return withChild(json, object, layout,
                   writeJsonString(member.key, kPlain) + colon + laidOut(member.value, layout, object.depth + 1));
}

std::string withElement(std::string_view json, const JsonPlace& array, const JsonValue& element) {
  const Layout layout = layoutIn(json, array);
  return withChild(json, array, layout, laidOut(element, layout, array.depth + 1));
}

std::string withValue(std::string_view json, const JsonPlace& place, const JsonValue& value) {
  return spliced(json, {place.begin, place.end, laidOut(value, layoutOf(json), place.depth)});
}

std::string withoutChild(std::string_view json, const JsonPlace& container, std::size_t index) {
  const std::vector<JsonPlace>& children = container.children;
  if (children.size() == 1) return spliced(json, {container.begin + 1, container.end - 1, ""});
  if (index == 0) return spliced(json, {children[0].start, children[1].start, ""});
  return spliced(json, {children[index - 1].end, children[index].end, ""});
}

}  // namespace brindle
