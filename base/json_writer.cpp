#include "base/json_writer.h"

#include <algorithm>

#include "base/text.h"

namespace brindle {
namespace {

constexpr std::string_view kReplacementCharacter = "\xEF\xBF\xBD";
constexpr std::string_view kHexDigits = "0123456789abcdef";

void appendControl(std::string& out, char c) {
  switch (c) {
    case '\b':
      out += "\\b";
      return;
    case '\f':
      out += "\\f";
      return;
    case '\n':
      out += "\\n";
      return;
    case '\r':
      out += "\\r";
      return;
    case '\t':
      out += "\\t";
      return;
  }
  const auto byte = static_cast<unsigned char>(c);
  out += "\\u00";
  out += kHexDigits[byte >> 4];
  out += kHexDigits[byte & 15];
}

bool isPlain(char c, bool escapeSlashes) {
  const auto byte = static_cast<unsigned char>(c);
  return byte >= 0x20 && byte < 0x80 && c != '"' && c != '\\' && !(escapeSlashes && c == '/');
}

void appendString(std::string& out, std::string_view text, bool escapeSlashes) {
  out += '"';
  std::size_t position = 0;
  while (position < text.size()) {
    std::size_t end = position;
    while (end < text.size() && isPlain(text[end], escapeSlashes)) ++end;
    out += text.substr(position, end - position);
    position = end;
    if (position == text.size()) break;
    const char c = text[position];
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x80) {
      // Names of processes and files may hold any bytes; a document must be UTF-8.
      const std::size_t length = scalarLength(text.substr(position));
      out += length == 0 ? kReplacementCharacter : text.substr(position, length);
      position += std::max<std::size_t>(length, 1);
      continue;
    }
    if (byte < 0x20) {
      appendControl(out, c);
    } else {
      out += '\\';
      out += c;
    }
    ++position;
  }
  out += '"';
}

class Writer {
 public:
  explicit Writer(JsonStyle style) : style_(style) {}

  void write(const JsonValue& value) {
    if (const JsonObject* object = value.object()) {
      writeObject(*object);
    } else if (const JsonArray* array = value.array()) {
      writeArray(*array);
    } else if (const std::string* string = value.string()) {
      appendString(out_, *string, style_.escapeSlashes);
    } else if (const JsonNumber* number = value.number()) {
      out_ += number->text();
    } else if (const auto boolean = value.boolean()) {
      out_ += *boolean ? "true" : "false";
    } else {
      out_ += "null";
    }
  }

  std::string take() { return std::move(out_); }

 private:
  void writeArray(const JsonArray& array) {
    open('[');
    bool first = true;
    for (const JsonValue& element : array) {
      separate(first);
      write(element);
    }
    close(']', first);
  }

  void writeObject(const JsonObject& object) {
    open('{');
    bool first = true;
    if (style_.sortedKeys) {
      std::vector<const JsonMember*> members;
      members.reserve(object.size());
      for (const JsonMember& member : object.members()) members.push_back(&member);
      std::sort(members.begin(), members.end(),
                [](const JsonMember* a, const JsonMember* b) { return a->key < b->key; });
      for (const JsonMember* member : members) writeMember(*member, first);
    } else {
      for (const JsonMember& member : object.members()) writeMember(member, first);
    }
    close('}', first);
  }

  void writeMember(const JsonMember& member, bool& first) {
    separate(first);
    appendString(out_, member.key, style_.escapeSlashes);
    out_ += style_.pretty ? " : " : ":";
    write(member.value);
  }

  void open(char bracket) {
    out_ += bracket;
    ++level_;
  }

  void separate(bool& first) {
    if (!first) out_ += ',';
    first = false;
    if (style_.pretty) startLine();
  }

  void close(char bracket, bool empty) {
    --level_;
    if (style_.pretty) {
      if (empty) out_ += '\n';
      startLine();
    }
    out_ += bracket;
  }

  void startLine() {
    out_ += '\n';
    out_.append(2 * level_, ' ');
  }

  JsonStyle style_;
  std::string out_;
  std::size_t level_ = 0;
};

}  // namespace

std::string writeJson(const JsonValue& value, JsonStyle style) {
  Writer writer(style);
  writer.write(value);
  return writer.take();
}

std::string writeJsonString(std::string_view text, JsonStyle style) {
  std::string out;
  out.reserve(text.size() + 2);
  appendString(out, text, style.escapeSlashes);
  return out;
}

}  // namespace brindle
