// The command brindle: makes what a command may touch, and hands over.
#include <fcntl.h>
#include <unistd.h>

#include <csignal>

#include "cli/command_line.h"
#include "cli/command_table.h"

namespace {

/// With a standard stream closed, the next descriptor that is opened would take its place, and a remark would be
/// written into it. The stand-ins are close-on-exec: a command that is run finds its streams closed as they were.
void occupyStandardStreams() {
  int opened = 0;
  do {
    opened = ::open("/dev/null", O_RDWR | O_CLOEXEC);
  } while (opened >= 0 && opened <= STDERR_FILENO);
  if (opened >= 0) ::close(opened);
}

/// A reader that goes is seen as EPIPE instead, so that what is held is let go in order. Whoever runs another
/// program puts the default back for it.
void ignoreClosedPipes() {
  struct sigaction ignored = {};
  ignored.sa_handler = SIG_IGN;
  ::sigaction(SIGPIPE, &ignored, nullptr);
}

}  // namespace

int main(int count, char** words) {
  using namespace brindle;
  occupyStandardStreams();
  const InheritedSignals signals = InheritedSignals::current();
  ignoreClosedPipes();
  const Environment environment = processEnvironment();
  const TerminalStreams terminals = {.input = ::isatty(STDIN_FILENO) == 1,
                                     .output = ::isatty(STDOUT_FILENO) == 1,
                                     .error = ::isatty(STDERR_FILENO) == 1};
  const std::string noColor = environment("NO_COLOR").value_or("");
  const std::string term = environment("TERM").value_or("");
  StreamSink results(kStandardOutput);
  StreamSink remarks(kStandardError);
  Output output({.results = results, .remarks = remarks},
                wantsColour({.terminal = terminals.output, .noColor = noColor, .term = term}));
  CommandContext context = {.output = output, .environment = environment, .terminals = terminals, .signals = signals};
  const std::vector<std::string> arguments(words + (count > 0 ? 1 : 0), words + count);
  return runCommandLine(allCommands(), arguments, context);
}
