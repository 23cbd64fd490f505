#include "cli/output.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "base/descriptor.h"
#include "cli/exit_code.h"
#include "tests/cli/recorded_context.h"

namespace brindle {
namespace {

TEST(Output, KeepsResultsAndRemarksApart) {
  RecordedContext recorded;
  recorded.output.print("ports 3000\n");
  recorded.output.remark("3 processes were not inspected");
  recorded.output.printRemark("Stop them? ");
  EXPECT_EQ(recorded.results.text, "ports 3000\n");
  EXPECT_EQ(recorded.remarks.text, "brindle: 3 processes were not inspected\nStop them? ");
}

TEST(Output, DropsResultsInSilenceOnceTheReaderHasGone) {
  RecordedContext recorded;
  recorded.results.code = EPIPE;
  recorded.output.print("one\n");
  EXPECT_TRUE(recorded.output.readerGone());
  recorded.output.print("two\n");
  EXPECT_EQ(recorded.results.writes, 1);
  EXPECT_EQ(recorded.remarks.text, "");
  EXPECT_EQ(recorded.output.finish(ExitCode::kDone), ExitCode::kDone);
}

TEST(Output, TellsAFullDiskOnceAndEndsInFailure) {
  RecordedContext recorded;
  recorded.results.code = ENOSPC;
  recorded.output.print("one\n");
  recorded.output.print("two\n");
  EXPECT_FALSE(recorded.output.readerGone());
  EXPECT_EQ(recorded.remarks.text, "brindle: write standard output: No space left on device\n");
  EXPECT_EQ(recorded.output.finish(ExitCode::kDone), ExitCode::kFailure);
}

TEST(Output, NeitherAnswerStandsWhenItCouldNotBeWritten) {
  RecordedContext recorded;
  recorded.results.code = EIO;
  recorded.output.print("one\n");
  EXPECT_EQ(recorded.output.finish(ExitCode::kNegative), ExitCode::kFailure);
  EXPECT_EQ(recorded.output.finish(ExitCode::kNotFound), ExitCode::kNotFound);
  EXPECT_EQ(recorded.output.finish(ExitCode::kSignalBase + 2), ExitCode::kSignalBase + 2);
}

TEST(Output, ARemarkIsOneLineThatCannotSteerATerminal) {
  RecordedContext recorded;
  recorded.output.remark("unknown command \"a\x1b[31m\nb\xE2\x80\xAE\"");
  EXPECT_EQ(recorded.remarks.text, "brindle: unknown command \"a [31m b\"\n");
}

TEST(Output, IsAsWideAsTheTerminalOfItsResults) {
  RecordedContext recorded;
  EXPECT_EQ(recorded.output.columns(), 0U);
  recorded.results.width = 80;
  EXPECT_EQ(recorded.output.columns(), 80U);
}

TEST(Output, GoesOnWhenRemarksCannotBeWritten) {
  RecordedContext recorded;
  recorded.remarks.code = EPIPE;
  recorded.output.remark("nobody reads this");
  recorded.output.print("result\n");
  EXPECT_EQ(recorded.results.text, "result\n");
  EXPECT_EQ(recorded.output.finish(ExitCode::kDone), ExitCode::kDone);
}

TEST(Output, PaintsOnlyWithColour) {
  RecordedContext recorded;
  EXPECT_EQ(recorded.output.painted(Paint::red, "ghost"), "ghost");
  Output coloured({.results = recorded.results, .remarks = recorded.remarks}, true);
  EXPECT_EQ(coloured.painted(Paint::red, "ghost"), "\x1b[31mghost\x1b[0m");
  EXPECT_EQ(coloured.painted(Paint::bold, "x"), "\x1b[1mx\x1b[0m");
  EXPECT_EQ(coloured.painted(Paint::dim, "x"), "\x1b[2mx\x1b[0m");
  EXPECT_EQ(coloured.painted(Paint::green, "x"), "\x1b[32mx\x1b[0m");
  EXPECT_EQ(coloured.painted(Paint::yellow, "x"), "\x1b[33mx\x1b[0m");
  coloured.refuseColour();
  EXPECT_EQ(coloured.painted(Paint::red, "ghost"), "ghost");
}

TEST(Output, WantsColourOnlyOnATerminalThatKnowsItAndWithoutNoColor) {
  EXPECT_TRUE(wantsColour({.terminal = true, .noColor = "", .term = "xterm"}));
  EXPECT_FALSE(wantsColour({.terminal = false, .noColor = "", .term = "xterm"}));
  EXPECT_FALSE(wantsColour({.terminal = true, .noColor = "0", .term = "xterm"}));
  EXPECT_FALSE(wantsColour({.terminal = true, .noColor = "", .term = "dumb"}));
}

TEST(StreamSink, KnowsHowWideItsTerminalIsNowAndThatAFileIsNone) {
  const Descriptor controller(::posix_openpt(O_RDWR | O_NOCTTY));
  ASSERT_TRUE(controller && ::grantpt(controller.get()) == 0 && ::unlockpt(controller.get()) == 0);
  const Descriptor terminal(::open(::ptsname(controller.get()), O_RDWR | O_NOCTTY));
  ASSERT_TRUE(terminal);
  const StreamSink sink({terminal.get(), "the terminal"});
  for (const unsigned short columns : std::to_array<unsigned short>({80, 132, 40})) {
    const struct winsize size = {.ws_row = 24, .ws_col = columns, .ws_xpixel = 0, .ws_ypixel = 0};
    ASSERT_EQ(::ioctl(terminal.get(), TIOCSWINSZ, &size), 0);
    EXPECT_EQ(sink.columns(), columns);
  }
  const Descriptor file(::open("/dev/null", O_WRONLY));
  EXPECT_EQ(StreamSink({file.get(), "a file"}).columns(), 0U);
}

}  // namespace
}  // namespace brindle
