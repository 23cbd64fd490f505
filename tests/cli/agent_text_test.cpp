#include "cli/agent_text.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "base/text.h"

namespace brindle {
namespace {

TEST(VisibleText, OrdinaryTextStaysAsItIs) {
  for (const std::string_view text : {"", "node server.js", "déjà vu 日本 👍", "a  b", "\"quoted\" \\ /"}) {
    EXPECT_EQ(visibleText(text), text);
  }
}

TEST(VisibleText, ControlCharactersBecomeSpaces) {
  EXPECT_EQ(visibleText(std::string_view("a\nb\tc\0d\x7f"
                                         "e\r\n",
                                         11)),
            "a b c d e  ");
  EXPECT_EQ(visibleText("a\u0085b\u009Bc\u2028d\u2029e"), "a b c d e");
}

TEST(VisibleText, EscapeSequencesGo) {
  EXPECT_EQ(visibleText("\x1b[31;1mred\x1b[0m"), "red");
  EXPECT_EQ(visibleText("\x1b]0;title\x07x"), "x");
  EXPECT_EQ(visibleText("\x1b]8;;http://x\x1b\\y"), "y");
  EXPECT_EQ(visibleText("\x1bPdcs\x1b\\z"), "z");
  EXPECT_EQ(visibleText("a\x1b"
                        "7b"),
            "ab");
  EXPECT_EQ(visibleText("a\x1b[12"), "a");
  EXPECT_EQ(visibleText("a\x1b]never ended"), "a");
  EXPECT_EQ(visibleText("a\x1b"), "a");
  EXPECT_EQ(visibleText("a\x1bé"), "aé");
}

TEST(VisibleText, InvisibleAndBidirectionalControlsGo) {
  EXPECT_EQ(visibleText("a\u200Bb\u202Ec\u2066d\u2069e\uFEFFf\u061Cg\u00ADh\u2060i"), "abcdefghi");
  EXPECT_EQ(visibleText("x\U000E0041\U000E0042y\U000E0100z"), "xyz");
}

TEST(VisibleText, NeighboursOfTheInvisibleStay) {
  EXPECT_EQ(visibleText("\u200A\u2010\u2029\u202F\u2065"), "\u200A\u2010 \u202F");
  EXPECT_EQ(visibleText("\u00A0\u00AC\u00AE"), "\u00A0\u00AC\u00AE");
}

TEST(VisibleText, BytesThatAreNotUtf8BecomeReplacementCharacters) {
  EXPECT_EQ(visibleText("a\xff\xc3"), "a\uFFFD\uFFFD");
  EXPECT_EQ(visibleText("\xed\xa0\x80"), "\uFFFD\uFFFD\uFFFD");
}

TEST(AgentName, IsCutBeyondTheLimit) {
  for (const std::size_t length : {kAgentNameLimit - 1, kAgentNameLimit}) {
    EXPECT_EQ(agentName(std::string(length, 'x')), std::string(length, 'x'));
  }
  EXPECT_EQ(agentName(std::string(kAgentNameLimit + 1, 'x')), std::string(kAgentNameLimit - 3, 'x') + "...");
}

TEST(AgentCommandLine, SecretsAreReplacedBeforeItIsCut) {
  EXPECT_EQ(agentCommandLine("serve --token=hunter2 -PASSWORD x y"), "serve --token=••• -PASSWORD ••• y");
  const std::string line = std::string(kAgentCommandLineLimit, 'x') + ".";
  EXPECT_EQ(agentCommandLine(line), std::string(kAgentCommandLineLimit - 3, 'x') + "...");
}

TEST(AgentCommandLine, AnEscapeSequenceCannotHideASecretFromTheRules) {
  EXPECT_EQ(agentCommandLine("serve --to\x1b[0mken=hunter2"), "serve --token=•••");
  EXPECT_EQ(agentCommandLine("serve --token\nhunter2"), "serve --token •••");
}

TEST(CleanForAgents, ReachesEveryTextThatOthersChoose) {
  const std::string bad = "a\u202E\x1b[31mb";
  HostSnapshot snapshot;
  TrackedProcess process;
  process.name = process.commandLine = bad;
  process.path = process.cwd = process.agentName = process.framework = process.project = process.recordedAgentName =
      bad;
  snapshot.processes = {process};
  AgentSession session;
  session.agent = bad;
  session.project = session.cwd = bad;
  session.children = {SessionChild{.name = bad, .commandLine = bad}};
  snapshot.sessions = {session};
  snapshot.leftBehind = snapshot.likely = {LeftBehind{process, bad}};
  snapshot.protections = {{1, bad}};
  cleanForAgents(snapshot);

  TrackedProcess cleaned;
  cleaned.name = cleaned.commandLine = "ab";
  cleaned.path = cleaned.cwd = cleaned.agentName = cleaned.framework = cleaned.project = cleaned.recordedAgentName =
      "ab";
  EXPECT_EQ(snapshot.processes, std::vector{cleaned});
  EXPECT_EQ(snapshot.leftBehind, (std::vector{LeftBehind{cleaned, "ab"}}));
  EXPECT_EQ(snapshot.likely, (std::vector{LeftBehind{cleaned, "ab"}}));
  AgentSession cleanSession;
  cleanSession.agent = "ab";
  cleanSession.project = cleanSession.cwd = "ab";
  cleanSession.children = {SessionChild{.name = "ab", .commandLine = "ab"}};
  EXPECT_EQ(snapshot.sessions, std::vector{cleanSession});
  EXPECT_EQ(snapshot.protections, (ProtectionReasons{{1, "ab"}}));
}

RC_GTEST_PROP(VisibleTextProperty, AnyBytesBecomeValidTextWithoutControlsAndCleaningTwiceChangesNothing, ()) {
  const auto bytes = *rc::gen::container<std::string>(rc::gen::oneOf(
      rc::gen::arbitrary<char>(), rc::gen::element('\x1b', '[', ']', '\a', '\n', '\xe2', '\x80', '\xae', 'm')));
  const std::string once = visibleText(bytes);
  RC_ASSERT(isValidUtf8(once));
  for (const char c : once) RC_ASSERT(static_cast<unsigned char>(c) >= 0x20 && c != '\x7f');
  RC_ASSERT(visibleText(once) == once);
}

}  // namespace
}  // namespace brindle
