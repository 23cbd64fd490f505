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

/// The rows for the tables of options.
inline constexpr OptionSpec kYesOption = {.name = "--yes", .help = "stop without asking"};
inline constexpr OptionSpec kForceOption = {.name = "--force", .help = "end what does not end by itself in 3 seconds"};
inline constexpr OptionSpec kDryRunOption = {.name = "--dry-run", .help = "only show what would be stopped"};

/// The plan on the results, the question on the remarks, then one line for each process. 0 when everything that was to
/// be stopped is gone; 1 when there is nothing to stop or all of it had ended before, when the person declined or
/// cannot be asked, and when something still runs.
[[nodiscard]] int runStop(const StopList& list, const Arguments& arguments, CommandContext& context);

/// The pids of this process and its ancestors.
[[nodiscard]] std::unordered_set<std::int32_t> ownChain();

/// The plan as text: a table with what is left alone and why, and the sentence about what is freed.
[[nodiscard]] std::string stopListText(const StopList& list, const Output& output);

}  // namespace brindle
