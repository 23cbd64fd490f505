#include "cli/output.h"

#include <unistd.h>

#include <cerrno>

#include "cli/exit_code.h"

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

Outcome DescriptorSink::write(std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = ::write(descriptor_, text.data(), text.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      return fail(errno, descriptor_ == STDOUT_FILENO ? "write standard output" : "write standard error");
    }
    text.remove_prefix(static_cast<std::size_t>(written));
  }
  return {};
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

void Output::remark(std::string_view text) {
  std::string line = "brindle: ";
  line += text;
  line += '\n';
  printRemark(line);
}

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

int Output::finish(int code) const { return failed_ && code == ExitCode::kDone ? ExitCode::kFailure : code; }

bool wantsColour(const ColourFacts& facts) { return facts.terminal && facts.noColor.empty() && facts.term != "dumb"; }

}  // namespace brindle
