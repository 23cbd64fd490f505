// `brindle hook`: takes the payload of a Claude Code hook from standard input.
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "cli/agent_hook.h"
#include "cli/commands.h"
#include "platform/clock.h"

namespace brindle {
namespace {

constexpr std::size_t kReadSize = std::size_t{64} << 10;

struct ReadInput {
  std::string text;
  /// One line when reading failed; else empty.
  std::string problem;
};

/// Standard input to its end. One byte over the limit is kept, so that the payload is seen to be too long; the rest is
/// read and dropped, because the agent would otherwise find its pipe broken.
ReadInput readInput() {
  ReadInput input;
  std::array<char, kReadSize> buffer;
  while (true) {
    const ssize_t count = ::read(STDIN_FILENO, buffer.data(), buffer.size());
    if (count == 0) return input;
    if (count > 0) {
      const std::size_t room = kHookPayloadLimit + 1 - input.text.size();
      input.text.append(buffer.data(), std::min(room, static_cast<std::size_t>(count)));
      continue;
    }
    if (errno == EINTR) continue;
    struct pollfd more = {.fd = STDIN_FILENO, .events = POLLIN, .revents = 0};
    if (errno == EAGAIN && (::poll(&more, 1, -1) >= 0 || errno == EINTR)) continue;
    return {.text = {}, .problem = "read standard input: " + errorText(errno)};
  }
}

int runHook(const Arguments& arguments, CommandContext& context) {
  const bool verbose = std::ranges::find(arguments.trailing, "--verbose") != arguments.trailing.end();
  return runHookQuietly(context, verbose, [&]() -> std::vector<std::string> {
    if (context.terminals.input) return {"expected a hook's payload on standard input, not a terminal"};
    const ReadInput input = readInput();
    if (!input.problem.empty()) return {input.problem};
    return recordHook({.origin = HookOrigin::claudeHook, .text = input.text, .time = wallClockNow()},
                      context.environment, hookProcesses());
  });
}

constexpr OptionSpec kOptions[] = {{.name = "--verbose", .help = "says on standard error what went wrong"}};

}  // namespace

constinit const Command kHookCommand = {
    .name = "hook",
    .summary = "takes an event from a Claude Code hook",
    .usage = "[--verbose] < PAYLOAD",
    .details =
        "Claude Code runs it at its hooks and writes the payload to its standard input; 'brindle setup' puts it\n"
        "there. It is silent and always ends with 0, because an agent must not stop for it; options that it\n"
        "does not know, --help included, are passed over.",
    .options = kOptions,
    .style = ArgumentStyle::raw,
    .run = runHook};

}  // namespace brindle
