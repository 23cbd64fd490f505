// Where a command's results and remarks go.
//
// Used by every command: results on standard output, everything else on standard error. A reader that has gone (a
// closed pipe) is no error: from then on results are dropped in silence, and a command that would go on for ever
// asks readerGone(). Any other failure is told once and decides the exit code. One thread.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "base/result.h"
#include "base/stream.h"

namespace brindle {

/// Takes whole pieces of text.
class TextSink {
 public:
  virtual ~TextSink() = default;
  /// All of `text`, or why not; EPIPE when nobody reads any more.
  virtual Outcome write(std::string_view text) = 0;
  /// How wide the terminal is now that shows it; 0 when there is none, or it does not tell.
  [[nodiscard]] virtual std::size_t columns() const { return 0; }
};

/// Writes to a stream that it does not own. The process must ignore SIGPIPE, or a closed pipe ends it.
class StreamSink : public TextSink {
 public:
  explicit StreamSink(Stream stream) : stream_(stream) {}
  Outcome write(std::string_view text) override { return writeAll(stream_, text); }
  [[nodiscard]] std::size_t columns() const override;

 private:
  Stream stream_;
};

enum class Paint { bold, dim, red, green, yellow };

class Output {
 public:
  /// The sinks outlive the output.
  struct Sinks {
    TextSink& results;
    TextSink& remarks;
  };
  Output(Sinks sinks, bool colour) : sinks_(sinks), colour_(colour) {}

  /// Writes `text` to the results as it is, at once.
  void print(std::string_view text);
  /// Writes the line "brindle: TEXT" to the remarks, made one line that cannot steer a terminal: words of the command
  /// line and names of files end up in it.
  void remark(std::string_view text);
  /// Writes `text` to the remarks as it is: questions, and help after wrong usage.
  void printRemark(std::string_view text);

  /// `text` in colour, or as it is when there is to be no colour.
  [[nodiscard]] std::string painted(Paint paint, std::string_view text) const;
  [[nodiscard]] bool colour() const { return colour_; }
  void refuseColour() { colour_ = false; }
  /// The columns of the terminal that shows the results; 0 is no limit.
  [[nodiscard]] std::size_t columns() const { return sinks_.results.columns(); }

  /// Whether the reader of the results has gone: what is printed from now on is dropped.
  [[nodiscard]] bool readerGone() const { return readerGone_; }

  /// The exit code of a command that ended with `code`: 2 when it was an answer, 0 or 1, and could not be written.
  [[nodiscard]] int finish(int code) const;

 private:
  Sinks sinks_;
  bool colour_;
  bool readerGone_ = false;
  bool failed_ = false;
};

/// Whether to use colour: on a terminal that knows it, unless NO_COLOR is set to anything but an empty text.
struct ColourFacts {
  bool terminal = false;
  std::string_view noColor;
  std::string_view term;
};
[[nodiscard]] bool wantsColour(const ColourFacts& facts);

}  // namespace brindle
