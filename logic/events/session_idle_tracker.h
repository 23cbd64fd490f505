// Guesses from process activity which sessions have gone quiet after working, for agents without hooks.
//
// The application hands it one sample a live session at each refresh; a guess becomes a notification. A plain value
// without clock or lock; whoever shares one serialises all access.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/date.h"

namespace brindle {

class SessionIdleTracker {
 public:
  /// A load of this much or more is busy; in the unit of the caller's samples.
  static constexpr double kBusyThreshold = 5.0;

  struct State {
    /// When the key first appeared.
    Date firstSeen{};
    /// When it was last busy; absent until it was.
    std::optional<Date> lastBusy;
    /// It has been busy at least once since it appeared.
    bool everBusy = false;
    /// The current quiet spell has been reported.
    bool reportedIdle = false;

    bool operator==(const State&) const = default;
  };

  struct Sample {
    std::string key;
    double cpu = 0;
    /// Counts as quiet whatever the load.
    bool forcedQuiet = false;
  };

  /// Takes one pass of samples; the keys that have now been quiet for `idleAfter` (inclusive) after being busy, each
  /// once a quiet spell, in the order of the samples. Keys without a sample are forgotten and start afresh later.
  [[nodiscard]] std::vector<std::string> update(std::span<const Sample> samples, Date now, Seconds idleAfter);

  /// Whether the key was busy, or for one never busy first seen, less than `within` ago; false for an unknown key.
  [[nodiscard]] bool recentlyActive(std::string_view key, Date now, Seconds within) const;

  using States = std::map<std::string, State, std::less<>>;
  [[nodiscard]] const States& states() const { return states_; }

 private:
  States states_;
};

}  // namespace brindle
