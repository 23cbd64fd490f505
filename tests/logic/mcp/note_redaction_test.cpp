#include "logic/mcp/note_redaction.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <string>
#include <vector>

namespace brindle {
namespace {

std::string repeated(std::size_t count, char byte = 'a') { return std::string(count, byte); }

TEST(NoteRedaction, LeavesAnOrdinaryNoteAlone) {
  EXPECT_EQ(redactNote("stop the dev server, please - it is stuck"), "stop the dev server, please - it is stuck");
  EXPECT_EQ(redactNote(""), "");
}

TEST(NoteRedaction, HidesWhatFollowsTheEqualsSignOfASecretOption) {
  EXPECT_EQ(redactNote("--token=abc123"), "--token=•••");
  EXPECT_EQ(redactNote("run --token=a=b=c now"), "run --token=••• now");
  EXPECT_EQ(redactNote("--token="), "--token=•••");
}

TEST(NoteRedaction, HidesTheWordAfterASecretOption) {
  EXPECT_EQ(redactNote("--password hunter2 please"), "--password ••• please");
}

TEST(NoteRedaction, KnowsEverySecretKeyWithAnyNumberOfHyphens) {
  for (const std::string key :
       {"token", "key", "password", "passwd", "secret", "api-key", "apikey", "auth", "access-token"}) {
    for (const std::string hyphens : {"-", "--", "-----"}) {
      EXPECT_EQ(redactNote(hyphens + key + "=x"), hyphens + key + "=•••");
      EXPECT_EQ(redactNote(hyphens + key + " x"), hyphens + key + " •••");
    }
  }
}

TEST(NoteRedaction, IgnoresTheCaseOfKeys) {
  EXPECT_EQ(redactNote("-TOKEN=x"), "-TOKEN=•••");
  EXPECT_EQ(redactNote("--Api-Key x"), "--Api-Key •••");
  EXPECT_EQ(redactNote("--\u212AEY x"), "--\u212AEY •••");  // the Kelvin sign lower-cases to "k"
}

TEST(NoteRedaction, LeavesOtherOptionsAlone) {
  for (const char* note : {"--tokens=x", "--my-token=x y", "-- token x", "--=token x", "-", "--", "--port 3000"}) {
    EXPECT_EQ(redactNote(note), note);
  }
}

TEST(NoteRedaction, LeavesAKeyWithoutHyphenAlone) {
  EXPECT_EQ(redactNote("token=abc"), "token=abc");
  EXPECT_EQ(redactNote("token abc"), "token abc");
  EXPECT_EQ(redactNote("token=" + repeated(32)), "•••");  // but it is a long word of token characters
}

TEST(NoteRedaction, HidesLongWordsOfTokenCharacters) {
  EXPECT_EQ(redactNote("use " + repeated(40, 'Z') + " here"), "use ••• here");
  EXPECT_EQ(redactNote("azAZ09+/=_-" + repeated(31)), "•••");
}

TEST(NoteRedaction, HidesFrom32CharactersOn) {
  EXPECT_EQ(redactNote(repeated(31)), repeated(31));
  EXPECT_EQ(redactNote(repeated(32)), "•••");
  EXPECT_EQ(redactNote(repeated(33)), "•••");
}

TEST(NoteRedaction, KeepsALongWordWithAnyOtherCharacter) {
  for (const std::string other : {".", ":", ",", "\t", "\n", "é", "\xff", "@"}) {
    EXPECT_EQ(redactNote(repeated(40) + other), repeated(40) + other);
  }
}

TEST(NoteRedaction, KeepsALongWordThatBeginsWithAHyphen) {
  EXPECT_EQ(redactNote("-" + repeated(40)), "-" + repeated(40));
}

TEST(NoteRedaction, KeepsRunsOfSpaces) { EXPECT_EQ(redactNote("  a   b "), "  a   b "); }

TEST(NoteRedaction, TakesTheEmptyWordBetweenTwoSpacesForTheValue) {
  EXPECT_EQ(redactNote("--secret  value"), "--secret ••• value");
}

TEST(NoteRedaction, SplitsAtSpacesAlone) { EXPECT_EQ(redactNote("--secret\tx y"), "--secret\tx y"); }

TEST(NoteRedaction, TakesAnOptionAfterASecretOptionForItsValue) {
  EXPECT_EQ(redactNote("--token --password x"), "--token ••• x");
}

TEST(NoteRedaction, DoesNothingMoreAfterASecretOptionAtTheEnd) {
  EXPECT_EQ(redactNote("stop it --secret"), "stop it --secret");
  EXPECT_EQ(redactNote("--secret "), "--secret •••");
}

std::vector<std::string> wordsOf(const std::string& note) {
  std::vector<std::string> words(1);
  for (const char byte : note) {
    if (byte == ' ') {
      words.emplace_back();
    } else {
      words.back().push_back(byte);
    }
  }
  return words;
}

rc::Gen<std::string> notes() {
  const auto piece = rc::gen::element<std::string>(" ", " ", "--token", "-KEY", "=", "--password", "=", "x.y", "abc",
                                                   "0123456789abcdef", "0123456789abcdef", "•••", "\xff", "-");
  return rc::gen::map(rc::gen::container<std::vector<std::string>>(piece), [](const std::vector<std::string>& pieces) {
    std::string note;
    for (const std::string& part : pieces) note += part;
    return note;
  });
}

RC_GTEST_PROP(NoteRedaction, KeepsEachWordOrPutsBulletsInItsPlaceOrAfterItsEqualsSign, ()) {
  const auto before = wordsOf(*notes());
  std::string note;
  for (std::size_t index = 0; index < before.size(); ++index) note += (index == 0 ? "" : " ") + before[index];
  const auto after = wordsOf(redactNote(note));
  RC_ASSERT(after.size() == before.size());
  bool changed = false;
  for (std::size_t index = 0; index < after.size(); ++index) {
    const std::string& word = before[index];
    changed = changed || after[index] != word;
    const bool cut = after[index] == word.substr(0, word.find('=') + 1) + std::string(kRedacted);
    RC_ASSERT((after[index] == word || after[index] == kRedacted || cut));
  }
  RC_CLASSIFY(changed, "redacted");
}

RC_GTEST_PROP(NoteRedaction, LetsNoLongTokenWordPassThatIsNoOption, ()) {
  for (const std::string& word : wordsOf(redactNote(*notes()))) {
    const bool token = word.size() >= 32 && !word.starts_with('-') &&
                       word.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789+/=_-") ==
                           std::string::npos;
    RC_ASSERT(!token);
  }
}

RC_GTEST_PROP(NoteRedaction, ChangesNothingTheSecondTime, ()) {
  const std::string once = redactNote(*notes());
  RC_ASSERT(redactNote(once) == once);
}

}  // namespace
}  // namespace brindle
