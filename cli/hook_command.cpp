// `brindle hook`: takes the payload of a Claude Code hook from standard input.
#include <algorithm>
#include <array>

#include "base/stream.h"
#include "cli/agent_hook.h"
#include "cli/commands.h"
#include "platform/clock.h"

namespace brindle {
namespace {

constexpr std::size_t kReadSize = std::size_t{64} << 10;

/// Standard input to its end. One byte over the limit is kept, so that the payload is seen to be too long; the rest is
/// read and dropped, because the agent would otherwise find its pipe broken.
Result<std::string> readPayload() {
  std::string payload;
  std::array<char, kReadSize> buffer;
  for (;;) {
    const Result<std::size_t> count = readSome(kStandardInput, buffer);
    if (!count) return tl::make_unexpected(count.error());
    if (*count == 0) return payload;
    payload.append(buffer.data(), std::min(kHookPayloadLimit + 1 - payload.size(), *count));
  }
}

int runHook(const Arguments& arguments, CommandContext& context) {
  const bool verbose = std::ranges::find(arguments.trailing, "--verbose") != arguments.trailing.end();
  return runHookQuietly(context, verbose, [&]() -> std::vector<std::string> {
    if (context.terminals.input) return {"expected a hook's payload on standard input, not a terminal"};
    const Result<std::string> payload = readPayload();
    if (!payload) return {payload.error().message()};
    return recordHook({.origin = HookOrigin::claudeHook, .text = *payload, .time = wallClockNow()}, context.environment,
                      hookProcesses());
  });
}

constexpr OptionSpec kOptions[] = {{.name = "--verbose", .help = "says on standard error what went wrong"}};

}  // namespace

constinit const Command kHookCommand = {
    .name = "hook",
    .summary = "takes an event from a Claude Code hook",
    .usage = "[--verbose] < PAYLOAD",
    .details =
        "Claude Code runs it at its hooks and writes the payload to its standard input; 'brindle setup' puts it "
        "there. It is silent and always ends with 0, because an agent must not stop for it; options that it "
        "does not know are passed over. This help shows at a terminal only.",
    .options = kOptions,
    .style = ArgumentStyle::raw,
    .run = runHook};

}  // namespace brindle
