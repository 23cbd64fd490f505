// `brindle notify JSON`: takes the document that Codex hands to its notify command.
#include <algorithm>

#include "cli/agent_hook.h"
#include "cli/commands.h"
#include "platform/clock.h"

namespace brindle {
namespace {

constexpr std::string_view kVerbose = "--verbose";

int runNotify(const Arguments& arguments, CommandContext& context) {
  const std::vector<std::string>& words = arguments.trailing;
  const bool verbose = std::ranges::find(words, kVerbose) != words.end();
  return runHookQuietly(context, verbose, [&]() -> std::vector<std::string> {
    // Codex adds its document after the words of its settings, whatever those are.
    if (words.empty() || words.back() == kVerbose) return {"expected a JSON document as the last argument"};
    return recordHook({.origin = HookOrigin::codexNotify, .text = words.back(), .time = wallClockNow()},
                      context.environment, hookProcesses());
  });
}

constexpr OptionSpec kOptions[] = {{.name = kVerbose, .help = "says on standard error what went wrong"}};
constexpr ArgumentSpec kArguments[] = {{.name = "JSON", .help = "the document, as Codex passes it"}};

}  // namespace

constinit const Command kNotifyCommand = {
    .name = "notify",
    .summary = "takes an event from Codex",
    .usage = "[--verbose] JSON",
    .details =
        "Codex runs it as the program of its setting 'notify'; 'brindle setup codex' puts it there. It is silent "
        "and always ends with 0; options that it does not know are passed over. This help shows at a terminal only.",
    .options = kOptions,
    .arguments = kArguments,
    .style = ArgumentStyle::raw,
    .run = runNotify};

}  // namespace brindle
