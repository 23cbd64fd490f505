#include "logic/sessions/session_child_kind.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "logic/sessions/tracked_process.h"

namespace brindle {
namespace {

struct Word {
  std::string_view text;
  SessionChildKind kind;
};

constexpr auto kWords = std::to_array<Word>({
    {"mcp", SessionChildKind::mcp},
    {"modelcontextprotocol", SessionChildKind::mcp},
    {"vitest", SessionChildKind::testRunner},
    {"jest", SessionChildKind::testRunner},
    {"pytest", SessionChildKind::testRunner},
    {"playwright", SessionChildKind::testRunner},
    {"cargo test", SessionChildKind::testRunner},
    {"go test", SessionChildKind::testRunner},
    {"xcodebuild", SessionChildKind::testRunner},
    {"chrome", SessionChildKind::browser},
    {"chromium", SessionChildKind::browser},
    {"firefox", SessionChildKind::browser},
    {"headless", SessionChildKind::browser},
});

/// For each byte, which words begin with it, one bit a word: a snapshot holds tens of thousands of long command
/// lines, and one pass over each is all that is affordable.
using WordSet = std::uint16_t;
static_assert(kWords.size() <= 16);

constexpr std::array<WordSet, 256> wordsByFirstByte() {
  std::array<WordSet, 256> table{};
  for (std::size_t word = 0; word < kWords.size(); ++word) {
    auto& entry = table[static_cast<unsigned char>(kWords[word].text.front())];
    entry = static_cast<WordSet>(entry | (1U << word));
  }
  return table;
}

constexpr std::array<WordSet, 256> kWordsByFirstByte = wordsByFirstByte();

struct WordKinds {
  bool mcp = false;
  bool testRunner = false;
  bool browser = false;
};

void note(SessionChildKind kind, WordKinds& found) {
  switch (kind) {
    case SessionChildKind::mcp:
      found.mcp = true;
      break;
    case SessionChildKind::testRunner:
      found.testRunner = true;
      break;
    case SessionChildKind::browser:
      found.browser = true;
      break;
    case SessionChildKind::devServer:
    case SessionChildKind::other:
      break;  // no word stands for these
  }
}

/// Stops early at an MCP word, which decides alone.
WordKinds findWords(std::string_view haystack) {
  WordKinds found;
  for (std::size_t at = 0; at + 1 < haystack.size() && !found.mcp; ++at) {
    WordSet words = kWordsByFirstByte[static_cast<unsigned char>(haystack[at])];
    for (; words != 0; words = static_cast<WordSet>(words & (words - 1U))) {
      const Word& word = kWords[static_cast<std::size_t>(std::countr_zero(words))];
      // The second byte tells most misses apart without a call.
      if (haystack[at + 1] == word.text[1] && haystack.substr(at).starts_with(word.text)) note(word.kind, found);
    }
  }
  return found;
}

/// Folding ASCII letters alone finds the same words as the full lower-case mapping: the only other characters that
/// map into ASCII are U+212A, to a "k" that no word has, and U+0130, to an "i" with a mark after it that no word has.
/// Writes the folded text to `out`, which has room for it, and returns where it ended.
char* writeFolded(std::string_view text, char* out) {
  return std::transform(text.begin(), text.end(), out, [](char byte) {
    const bool upper = byte >= 'A' && byte <= 'Z';
    return static_cast<char>(byte + (upper ? 'a' - 'A' : 0));
  });
}

}  // namespace

SessionChildKind classifyChild(const TrackedProcess& process) {
  const std::string_view path = process.path ? std::string_view(*process.path) : std::string_view();
  std::string haystack(process.commandLine.size() + path.size() + process.name.size() + 2, ' ');
  char* end = writeFolded(process.commandLine, haystack.data());
  end = writeFolded(path, end + 1);
  writeFolded(process.name, end + 1);

  const WordKinds found = findWords(haystack);
  if (found.mcp) return SessionChildKind::mcp;
  if (!process.ports.empty() || process.framework) return SessionChildKind::devServer;
  if (found.testRunner) return SessionChildKind::testRunner;
  if (found.browser) return SessionChildKind::browser;
  return SessionChildKind::other;
}

}  // namespace brindle
