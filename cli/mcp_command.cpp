// `brindle mcp`: the MCP server on standard input and output.
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <memory>

#include "base/descriptor.h"
#include "base/number_text.h"
#include "cli/command_line.h"
#include "cli/commands.h"
#include "cli/exit_code.h"
#include "cli/mcp_conversation.h"
#include "cli/mcp_live_source.h"
#include "cli/mcp_service.h"
#include "platform/clock.h"
#include "platform/directories.h"

namespace brindle {
namespace {

constexpr const char* kFramingVariable = "BRINDLE_MCP_FRAMING";
constexpr std::size_t kReadSize = std::size_t{64} << 10;

// A client may hand over descriptors that do not block.
bool waitFor(int descriptor, short event) {
  struct pollfd wanted = {.fd = descriptor, .events = event, .revents = 0};
  return ::poll(&wanted, 1, -1) >= 0 || errno == EINTR;
}

// Reads until there is something: its length, 0 at the end, -1 with errno on failure.
ssize_t readSome(int descriptor, std::array<char, kReadSize>& buffer) {
  while (true) {
    const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
    if (count >= 0) return count;
    if (errno == EINTR) continue;
    if (errno != EAGAIN || !waitFor(descriptor, POLLIN)) return -1;
  }
}

// 0, or the errno value of the write that failed.
int writeAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
    if (count >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno != EINTR && (errno != EAGAIN || !waitFor(descriptor, POLLOUT))) {
      return errno;
    }
  }
  return 0;
}

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
    context.output.remark("cannot take standard output: " + errorText(errno));
    return ExitCode::kFailure;
  }
  int writeError = 0;
  MCPConversation conversation(
      choice, {.answer = [&](const JsonObject& message) { return service.answer(message, wallClockNow()); },
               .send =
                   [&](std::string_view bytes) {
                     writeError = writeAll(output.get(), bytes);
                     return writeError == 0;
                   }});
  const auto buffer = std::make_unique<std::array<char, kReadSize>>();
  ssize_t count = 0;
  while ((count = readSome(STDIN_FILENO, *buffer)) > 0) {
    if (!conversation.receive({buffer->data(), static_cast<std::size_t>(count)})) break;
  }
  // The end of the input and a reader that has gone are how clients say goodbye.
  if (count < 0) context.output.remark("cannot read standard input: " + errorText(errno));
  if (writeError != 0 && writeError != EPIPE) context.output.remark("cannot reply: " + errorText(writeError));
  return count < 0 || (writeError != 0 && writeError != EPIPE) ? ExitCode::kFailure : ExitCode::kDone;
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

// The source that the options ask for, or one line of what is wrong with them.
tl::expected<std::unique_ptr<SnapshotSource>, std::string> chosenSource(const Arguments& arguments,
                                                                        const CommandContext& context) {
  const std::optional<std::string> file = arguments.value("--snapshot");
  if (!file) {
    for (const std::string_view option : {"--now", "--uid", "--rules"}) {
      if (arguments.has(option)) return tl::make_unexpected("mcp: " + std::string(option) + " goes with --snapshot");
    }
    return liveSource(context.environment);
  }
  RecordedSnapshot recorded{.file = *file, .now = wallClockNow(), .currentUser = ::getuid()};
  if (const auto now = arguments.value("--now")) {
    const auto seconds = doubleFromText(*now);
    if (!seconds) return tl::make_unexpected("mcp: --now: expected seconds since 1970, got \"" + *now + "\"");
    recorded.now = dateFromSeconds(*seconds);
  }
  if (const auto uid = arguments.value("--uid")) {
    const auto number = integerFromText(*uid);
    if (!number || *number < 0 || *number > UINT32_MAX) {
      return tl::make_unexpected("mcp: --uid: expected a user id, got \"" + *uid + "\"");
    }
    recorded.currentUser = static_cast<std::uint32_t>(*number);
  }
  if (arguments.value("--rules") == "linux") recorded.rules = &SystemProcessRules::forLinux();
  auto source = recordedSource(recorded);
  if (!source) return tl::make_unexpected("mcp: " + source.error().message());
  return *std::move(source);
}

int runMCP(const Arguments& arguments, CommandContext& context) {
  auto source = chosenSource(arguments, context);
  if (!source) return wrongUsage(context, source.error());
  MCPService service({.source = **source,
                      .stateFolder = stateFolder(context.environment),
                      .settingsFile = settingsFile(context.environment),
                      .remark = [&](std::string_view line) { context.output.remark(line); }});
  return serve(framingChoice(arguments, context), service, context);
}

constexpr std::string_view kFramings[] = {"auto", "lines", "header"};
constexpr std::string_view kRules[] = {"macos", "linux"};
constexpr OptionSpec kOptions[] = {
    {.name = "--framing", .value = "HOW", .help = "how replies are framed; auto when not given", .choices = kFramings},
    {.name = "--snapshot", .value = "FILE", .help = "report on these recorded processes instead of this machine"},
    {.name = "--now", .value = "SECONDS", .help = "with --snapshot: its moment, in seconds since 1970"},
    {.name = "--uid", .value = "N", .help = "with --snapshot: whose processes are one's own"},
    {.name = "--rules", .value = "SYSTEM", .help = "with --snapshot: whose system processes", .choices = kRules}};

}  // namespace

constinit const Command kMCPCommand = {
    .name = "mcp",
    .summary = "answers coding agents over the Model Context Protocol",
    .usage = "[--framing auto|lines|header]",
    .details =
        "Agents start it and talk to it on standard input and output. It reports and never stops a process;\n"
        "a request to quit something waits until a person confirms it. Replies carry a Content-Length header\n"
        "and a line feed, which clients read past; with 'lines', or when 'auto' meets a client known not to\n"
        "bear the header, they are bare lines. BRINDLE_MCP_FRAMING sets the default. It ends with its input.",
    .options = kOptions,
    .run = runMCP};

}  // namespace brindle
