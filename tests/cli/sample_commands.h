// A few commands for the tests of the framework; each prints what it was given.
#pragma once

#include <array>

#include "cli/command.h"
#include "cli/exit_code.h"

namespace brindle::SampleCommands {

inline std::string shown(const Arguments& arguments) {
  std::string text;
  for (const auto& [name, value] : arguments.options) text += name + "=" + value + ";";
  for (const auto& word : arguments.words) text += "[" + word + "]";
  for (const auto& word : arguments.trailing) text += "<" + word + ">";
  return text;
}

inline int show(const Arguments& arguments, CommandContext& context) {
  context.output.print(shown(arguments));
  return ExitCode::kNegative;
}

inline constexpr std::string_view kFramings[] = {"auto", "lines", "header"};
inline constexpr OptionSpec kOptions[] = {
    {.name = "--for", .value = "DURATION", .help = "how long"},
    {.name = "--json", .help = "prints the document"},
    {.name = "--watch", .value = "SECONDS", .help = "repeats", .valueOptional = true},
    {.name = "--framing", .value = "FRAMING", .help = "how messages are framed", .choices = kFramings}};
inline constexpr std::string_view kVerbs[] = {"off", "on", "status"};
inline constexpr ArgumentSpec kVerb[] = {{.name = "WHAT", .help = "what to do", .choices = kVerbs}};
inline constexpr ArgumentSpec kTargets[] = {{.name = "PID", .help = "the first"},
                                            {.name = "MORE", .help = "others", .required = false, .repeated = true}};

inline constexpr Command kVerbed = {.name = "sleep",
                                    .summary = "switches",
                                    .usage = "off [--for DURATION]\non\nstatus",
                                    .details = "It takes a while.",
                                    .options = kOptions,
                                    .arguments = kVerb,
                                    .run = show};
inline constexpr Command kListed = {
    .name = "stop", .summary = "stops", .usage = "PID…", .options = kOptions, .arguments = kTargets, .run = show};
inline constexpr Command kBare = {.name = "ports", .summary = "lists the ports", .run = show};
inline constexpr Command kTrailing = {.name = "run",
                                      .summary = "runs",
                                      .usage = "-- COMMAND…",
                                      .options = kOptions,
                                      .style = ArgumentStyle::trailingCommand,
                                      .run = show};
inline constexpr Command kRaw = {.name = "hook", .summary = "listens", .style = ArgumentStyle::raw, .run = show};

inline constexpr std::array<const Command*, 5> kAll = {&kVerbed, &kListed, &kBare, &kTrailing, &kRaw};

}  // namespace brindle::SampleCommands
