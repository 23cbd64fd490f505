#include "logic/mcp/note_redaction.h"

#include <algorithm>
#include <array>

#include "base/text.h"

namespace brindle {
namespace {

constexpr auto kSecretKeys = std::to_array<std::string_view>(
    {"token", "key", "password", "passwd", "secret", "api-key", "apikey", "auth", "access-token"});

bool isSecretKey(std::string_view key) {
  return std::find(kSecretKeys.begin(), kSecretKeys.end(), lowerCase(key)) != kSecretKeys.end();
}

bool isTokenCharacter(char byte) {
  constexpr std::string_view kMarks = "+/=_-";
  return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9') ||
         kMarks.find(byte) != std::string_view::npos;
}

bool looksLikeToken(std::string_view word) {
  return word.size() >= kTokenLength && std::all_of(word.begin(), word.end(), isTokenCharacter);
}

/// Walks the words of one note; an option may tell it that the next word is its value.
class Redactor {
 public:
  void add(std::string_view word, std::string& out) {
    if (nextIsSecret_) {
      nextIsSecret_ = false;
      out += kRedacted;
    } else if (word.starts_with('-')) {
      addOption(word, out);
    } else {
      out += looksLikeToken(word) ? kRedacted : word;
    }
  }

 private:
  void addOption(std::string_view word, std::string& out) {
    const std::size_t equals = word.find('=');
    const std::string_view dashedKey = word.substr(0, equals);
    const std::size_t keyBegin = std::min(dashedKey.find_first_not_of('-'), dashedKey.size());
    if (!isSecretKey(dashedKey.substr(keyBegin))) {
      out += word;
    } else if (equals == std::string_view::npos) {
      out += word;
      nextIsSecret_ = true;
    } else {
      out += word.substr(0, equals + 1);
      out += kRedacted;
    }
  }

  bool nextIsSecret_ = false;
};

}  // namespace

std::string redactNote(std::string_view note) {
  Redactor redactor;
  std::string out;
  out.reserve(note.size());
  for (;;) {
    const std::size_t space = note.find(' ');
    redactor.add(note.substr(0, space), out);
    if (space == std::string_view::npos) return out;
    out.push_back(' ');
    note.remove_prefix(space + 1);
  }
}

}  // namespace brindle
