// Any bytes keep their spaces, lose every long word of token characters that is no option, and are not changed again.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "logic/mcp/note_redaction.h"

namespace {

bool isToken(std::string_view word) {
  constexpr std::string_view kCharacters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789+/=_-";
  return word.size() >= 32 && word.front() != '-' && word.find_first_not_of(kCharacters) == std::string_view::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view note(reinterpret_cast<const char*>(data), size);
  const std::string redacted = brindle::redactNote(note);
  if (std::count(note.begin(), note.end(), ' ') != std::count(redacted.begin(), redacted.end(), ' ')) std::abort();
  if (brindle::redactNote(redacted) != redacted) std::abort();
  std::string_view rest = redacted;
  for (;;) {
    const std::size_t space = rest.find(' ');
    if (isToken(rest.substr(0, space))) std::abort();
    if (space == std::string_view::npos) return 0;
    rest.remove_prefix(space + 1);
  }
}
