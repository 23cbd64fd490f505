#include "cli/output.h"

#include <sys/ioctl.h>

#include <cerrno>

#include "cli/exit_code.h"
#include "inventory/valid_text.h"

namespace brindle {

namespace {

constexpr std::string_view escapeOf(Paint paint) {
  switch (paint) {
    case Paint::bold:
      return "\x1b[1m";
    case Paint::dim:
      return "\x1b[2m";
    case Paint::red:
      return "\x1b[31m";
    case Paint::green:
      return "\x1b[32m";
    case Paint::yellow:
      return "\x1b[33m";
  }
  return "";
}

}  // namespace

std::size_t StreamSink::columns() const {
  struct winsize size = {};
  return ::ioctl(stream_.descriptor, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

void Output::print(std::string_view text) {
  if (readerGone_ || failed_) return;
  const Outcome written = sinks_.results.write(text);
  if (written) return;
  if (written.error().code == EPIPE) {
    readerGone_ = true;
    return;
  }
  failed_ = true;
  remark(written.error().message());
}

void Output::remark(std::string_view text) { printRemark("brindle: " + terminalText(text) + "\n"); }

void Output::printRemark(std::string_view text) {
  // Nobody is left to be told that remarks cannot be written.
  static_cast<void>(sinks_.remarks.write(text));
}

std::string Output::painted(Paint paint, std::string_view text) const {
  if (!colour_) return std::string(text);
  std::string result(escapeOf(paint));
  result += text;
  result += "\x1b[0m";
  return result;
}

int Output::finish(int code) const { return failed_ && code <= ExitCode::kNegative ? ExitCode::kFailure : code; }

bool wantsColour(const ColourFacts& facts) { return facts.terminal && facts.noColor.empty() && facts.term != "dumb"; }

}  // namespace brindle
