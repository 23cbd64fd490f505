// `brindle mcp`: the MCP server on standard input and output.
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <memory>

#include "base/descriptor.h"
#include "base/stream.h"
#include "cli/command_line.h"
#include "cli/commands.h"
#include "cli/exit_code.h"
#include "cli/mcp_conversation.h"
#include "cli/mcp_service.h"
#include "cli/mcp_snapshot_source.h"
#include "platform/clock.h"
#include "platform/directories.h"

namespace brindle {
namespace {

constexpr const char* kFramingVariable = "BRINDLE_MCP_FRAMING";
constexpr std::size_t kReadSize = std::size_t{64} << 10;

// Standard output on a descriptor of its own; descriptor 1 becomes standard error, so that nothing that prints by
// mistake can break the protocol.
Descriptor takeStandardOutput() {
  Descriptor output(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
  if (output && ::dup2(STDERR_FILENO, STDOUT_FILENO) < 0) output.reset();
  return output;
}

int serve(MCPFramingChoice choice, MCPService& service, CommandContext& context) {
  const Descriptor output = takeStandardOutput();
  if (!output) {
    context.output.remark("take standard output: " + errorText(errno));
    return ExitCode::kFailure;
  }
  const Stream replies{output.get(), kStandardOutput.name};
  Outcome sent;
  MCPConversation conversation(
      choice, {.answer = [&](const JsonObject& message) { return service.answer(message, wallClockNow()); },
               .send =
                   [&](std::string_view bytes) {
                     sent = writeAll(replies, bytes);
                     return sent.has_value();
                   }});
  const auto buffer = std::make_unique<std::array<char, kReadSize>>();
  Result<std::size_t> count = 0;
  while ((count = readSome(kStandardInput, *buffer)) && *count > 0) {
    if (!conversation.receive({buffer->data(), *count})) break;
  }
  // The end of the input and a reader that has gone are how clients say goodbye.
  if (!sent && sent.error().code == EPIPE) return ExitCode::kDone;
  if (count && sent) return ExitCode::kDone;
  context.output.remark((sent ? count.error() : sent.error()).message());
  return ExitCode::kFailure;
}

MCPFramingChoice framingChoice(const Arguments& arguments, CommandContext& context) {
  const std::optional<std::string> option = arguments.value("--framing");
  if (option) return enumFrom<MCPFramingChoice>(*option).value_or(MCPFramingChoice::automatic);
  const std::string variable = context.environment(kFramingVariable).value_or("");
  if (variable.empty()) return MCPFramingChoice::automatic;
  const auto choice = enumFrom<MCPFramingChoice>(variable);
  if (!choice) {
    context.output.remark(std::string(kFramingVariable) + ": expected auto, lines or header, got \"" + variable +
                          "\"; taking auto");
  }
  return choice.value_or(MCPFramingChoice::automatic);
}

int runMCP(const Arguments& arguments, CommandContext& context) {
  const ReportUsage usage = reportOptionsOf(arguments);
  if (!usage.problem.empty()) return wrongUsage(context, usage.problem);
  const auto source = snapshotSource(usage.options, context.environment);
  if (!source) {
    context.output.remark(source.error());
    return ExitCode::kFailure;
  }
  // Whoever tries it by hand would else wait for an answer for ever.
  if (context.terminals.input) context.output.remark("an agent talks to it on standard input; Ctrl-D ends it");
  MCPService service({.source = **source,
                      .stateFolder = stateFolder(context.environment),
                      .settingsFile = settingsFile(context.environment),
                      .remark = [&](std::string_view line) { context.output.remark(line); }});
  return serve(framingChoice(arguments, context), service, context);
}

constexpr std::string_view kFramings[] = {"auto", "lines", "header"};
constexpr OptionSpec kOptions[] = {
    {.name = "--framing", .value = "HOW", .help = "how replies are framed; auto when not given", .choices = kFramings},
    kSnapshotOption,
    kNowOption,
    kUidOption,
    kRulesOption};

}  // namespace

constinit const Command kMCPCommand = {
    .name = "mcp",
    .summary = "answers coding agents over the Model Context Protocol",
    .usage = "[--framing auto|lines|header]",
    .details =
        "Agents start it and talk to it on standard input and output. It reports and never stops a process; "
        "a request to quit something waits until a person confirms it. Replies carry a Content-Length header "
        "and a line feed, which clients read past; with 'lines', or when 'auto' meets a client known not to "
        "bear the header, they are bare lines. BRINDLE_MCP_FRAMING sets the default. It ends with its input.",
    .options = kOptions,
    .run = runMCP};

}  // namespace brindle
