#include "base/stream.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <string>
#include <thread>

#include "base/descriptor.h"

namespace brindle {
namespace {

/// A pipe whose ends do not block when `blocks` is false, as a program that shares them may have set them.
class StreamTest : public ::testing::TestWithParam<bool> {
 protected:
  void SetUp() override {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    reader_ = Descriptor(ends[0]);
    writer_ = Descriptor(ends[1]);
    if (GetParam()) return;
    for (const int end : ends) ASSERT_EQ(::fcntl(end, F_SETFL, ::fcntl(end, F_GETFL) | O_NONBLOCK), 0);
  }

  [[nodiscard]] Stream reading() const { return {reader_.get(), "the pipe"}; }
  [[nodiscard]] Stream writing() const { return {writer_.get(), "the pipe"}; }

  Descriptor reader_;
  Descriptor writer_;
};

INSTANTIATE_TEST_SUITE_P(BlockingOrNot, StreamTest, ::testing::Bool());

TEST_P(StreamTest, ReadsWhatIsThereAndThenTheEnd) {
  ASSERT_TRUE(writeAll(writing(), "hello"));
  writer_.reset();
  char buffer[16];
  ASSERT_EQ(readSome(reading(), buffer), 5U);
  EXPECT_EQ(std::string_view(buffer, 5), "hello");
  EXPECT_EQ(readSome(reading(), buffer), 0U);
}

TEST_P(StreamTest, CarriesMoreThanThePipeHoldsToAReaderThatComesLate) {
  const std::string sent(std::size_t{1} << 20, 'x');
  std::string received;
  std::thread reader([&] {
    char buffer[4096];
    for (;;) {
      const Result<std::size_t> count = readSome(reading(), buffer);
      if (!count || *count == 0) return;
      received.append(buffer, *count);
    }
  });
  const Outcome written = writeAll(writing(), sent);
  writer_.reset();
  reader.join();
  EXPECT_TRUE(written);
  EXPECT_EQ(received, sent);
}

TEST_P(StreamTest, AReaderThatHasGoneIsAFailureThatNamesTheStream) {
  const auto before = ::signal(SIGPIPE, SIG_IGN);
  reader_.reset();
  const Outcome written = writeAll(writing(), "gone");
  ::signal(SIGPIPE, before);
  ASSERT_FALSE(written);
  EXPECT_EQ(written.error(), (Failure{EPIPE, "write the pipe"}));
}

TEST(Stream, WhatIsNoStreamIsAFailure) {
  char buffer[1];
  EXPECT_EQ(readSome({-1, "standard input"}, buffer).error(), (Failure{EBADF, "read standard input"}));
  EXPECT_EQ(writeAll({-1, "standard output"}, "x").error(), (Failure{EBADF, "write standard output"}));
  EXPECT_TRUE(writeAll({-1, "standard output"}, "")) << "nothing is written, so nothing fails";
}

}  // namespace
}  // namespace brindle
