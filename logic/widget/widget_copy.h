// The widget's short lines of text, made from its snapshot.
//
// Used by the widget and the status line. Pure; independent of the locale.
#pragma once

#include <optional>
#include <string>

#include "base/date.h"
#include "logic/widget/widget_snapshot.h"

namespace brindle::WidgetCopy {

/// The most ports and the most agent names that a line holds.
inline constexpr std::size_t kListed = 3;

/// "1.25 GB, ports 3000, 5173"; "All clear" without ghosts.
[[nodiscard]] std::string ghostLine(const WidgetSnapshot& snapshot);

/// "Claude Code, Codex working", the distinct names in first order; "None running" without agents.
[[nodiscard]] std::string agentsLine(const WidgetSnapshot& snapshot);

/// "on pace", "empty 45m" or "resets 3h 05m"; none when the plan has neither date.
[[nodiscard]] std::optional<std::string> planLine(const WidgetSnapshot& snapshot, Date now);

/// "3 processes".
[[nodiscard]] std::string freedLine(const WidgetSnapshot& snapshot);

/// The time from `now` until `date`: "45m" below an hour, "3h 05m" below a day, else "2d 5h"; a part of a minute
/// counts as a whole one, so that a time still to come is never "0m". "now" for a date that is not in the future.
[[nodiscard]] std::string timeUntil(Date date, Date now);

}  // namespace brindle::WidgetCopy
