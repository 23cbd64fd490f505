// Shows what would be stopped, asks, stops it, and tells what came of it.
//
// Used by the commands quit, stop, idle and ghosts. Nothing is signalled unless the person agreed.
#pragma once

#include <string>
#include <unordered_set>

#include "cli/command.h"
#include "cli/report_options.h"
#include "cli/stop_list.h"

namespace brindle {

/// The rows for the tables of options; the first is for reports that can also stop.
inline constexpr OptionSpec kStopOption = {.name = "--stop", .help = "stops them, after asking"};
inline constexpr OptionSpec kYesOption = {.name = "--yes", .help = "stops without asking"};
inline constexpr OptionSpec kForceOption = {.name = "--force",
                                            .help = "kills what has not ended 3 seconds after it was asked to"};
inline constexpr OptionSpec kDryRunOption = {.name = "--dry-run", .help = "only shows what would be stopped"};

/// What is wrong with the options of a report that can also stop, one line: only this machine's processes can be
/// stopped, once, what is told of it is for people, and without --stop there is nothing to agree to. Empty when nothing
/// is.
[[nodiscard]] std::string stopUsageProblem(const Arguments& arguments);

/// This machine's processes, for what is about to be stopped; none, with the reason told, when they cannot be read. Who
/// started what is remembered, so that what survives its agent is known later.
[[nodiscard]] std::optional<HostSnapshot> livingSnapshot(CommandContext& context);

/// The plan on the results, the question on the remarks, then one line for each process. 0 when everything that was to
/// be stopped is gone; 1 when there is nothing to stop or all of it had ended before, when the person declined or
/// cannot be asked, and when something still runs.
[[nodiscard]] int runStop(const StopList& list, const Arguments& arguments, CommandContext& context);

/// The pids of this process and its ancestors.
[[nodiscard]] std::unordered_set<std::int32_t> ownChain();

/// The plan as text: a table with what is left alone and why, and the sentence about what is freed.
[[nodiscard]] std::string stopListText(const StopList& list, const Output& output);

}  // namespace brindle
