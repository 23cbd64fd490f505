#include "cli/output.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

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

TEST(Output, KeepsAnExitCodeOtherThanDoneWhenResultsCannotBeWritten) {
  RecordedContext recorded;
  recorded.results.code = EIO;
  recorded.output.print("one\n");
  EXPECT_EQ(recorded.output.finish(ExitCode::kNegative), ExitCode::kNegative);
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

TEST(DescriptorSink, WritesEverythingIntoAPipeAndReportsItsClosedEnd) {
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  Descriptor reader(ends[0]);
  const Descriptor writer(ends[1]);
  DescriptorSink sink(writer.get());
  ASSERT_TRUE(sink.write("hello"));
  char buffer[16];
  ASSERT_EQ(::read(reader.get(), buffer, sizeof buffer), 5);
  EXPECT_EQ(std::string_view(buffer, 5), "hello");

  const auto previous = ::signal(SIGPIPE, SIG_IGN);
  reader.reset();
  const Outcome written = sink.write("gone");
  ::signal(SIGPIPE, previous);
  ASSERT_FALSE(written);
  EXPECT_EQ(written.error().code, EPIPE);
}

}  // namespace
}  // namespace brindle
