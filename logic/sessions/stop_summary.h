// The one sentence that tells what stopping a set of processes would free.
//
// Used by the idle plan and by every other plan that is shown before something is stopped. Pure.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace brindle::StopSummary {

/// What the idle plan says when it has nothing to stop, and what other plans say.
inline constexpr std::string_view kNothingIdle = "Nothing idle to stop.";
inline constexpr std::string_view kNothing = "Nothing to stop.";

/// "Stopping these frees 1.50 GB and ports 3000, 5173."; without ports "Stopping these frees 1.50 GB."; without memory
/// "Stopping these frees ports 3000, 5173.". Ports stand as given, joined with ", ". With neither it reads "Stopping
/// these frees 0 B.": a plan that is not empty must not claim that there is nothing to stop.
[[nodiscard]] std::string text(std::uint64_t bytes, const std::vector<int>& ports);

}  // namespace brindle::StopSummary
