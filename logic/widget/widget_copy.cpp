#include "logic/widget/widget_copy.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "base/byte_count.h"
#include "base/text.h"

namespace brindle::WidgetCopy {
namespace {

constexpr std::int64_t kMinutesPerHour = 60;
constexpr std::int64_t kMinutesPerDay = 24 * kMinutesPerHour;
/// Far more than any date that means something, and safely a whole number.
constexpr double kMostMinutes = 1e15;

std::string twoDigits(std::int64_t number) { return (number < 10 ? "0" : "") + std::to_string(number); }

std::string memoryText(std::uint64_t bytes) {
  constexpr auto kMost = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  return memoryByteCount(static_cast<std::int64_t>(std::min(bytes, kMost)));
}

}  // namespace

std::string timeUntil(Date date, Date now) {
  const double seconds = Seconds(date - now).count();
  if (!(seconds > 0)) return "now";
  const auto minutes = static_cast<std::int64_t>(std::min(std::ceil(seconds / 60), kMostMinutes));
  if (minutes < kMinutesPerHour) return std::to_string(minutes) + "m";
  if (minutes < kMinutesPerDay) {
    return std::to_string(minutes / kMinutesPerHour) + "h " + twoDigits(minutes % kMinutesPerHour) + "m";
  }
  return std::to_string(minutes / kMinutesPerDay) + "d " + std::to_string(minutes % kMinutesPerDay / kMinutesPerHour) +
         "h";
}

std::string ghostLine(const WidgetSnapshot& snapshot) {
  if (snapshot.ghosts < 1) return "All clear";
  std::string line = memoryText(snapshot.ghostBytes);
  if (snapshot.ghostPorts.empty()) return line;
  std::vector<std::string> ports;
  for (const std::uint16_t port : snapshot.ghostPorts) {
    if (ports.size() < kListed) ports.push_back(std::to_string(port));
  }
  return line + (snapshot.ghostPorts.size() > 1 ? ", ports " : ", port ") + joined(ports, ", ");
}

std::string agentsLine(const WidgetSnapshot& snapshot) {
  if (snapshot.agents < 1) return "None running";
  std::vector<std::string> names;
  for (const std::string& name : snapshot.agentNames) {
    if (names.size() < kListed && std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
  }
  return joined(names, ", ") + (snapshot.working > 0 ? " working" : " idle");
}

std::optional<std::string> planLine(const WidgetSnapshot& snapshot, Date now) {
  if (!snapshot.plan) return "Turn on in Brindle Settings";
  if (snapshot.plan->onPace) return "on pace";
  if (snapshot.plan->emptyAt) return "empty " + timeUntil(*snapshot.plan->emptyAt, now);
  if (snapshot.plan->resets) return "resets " + timeUntil(*snapshot.plan->resets, now);
  return std::nullopt;
}

std::string freedLine(const WidgetSnapshot& snapshot) {
  return std::to_string(snapshot.freedProcesses) + (snapshot.freedProcesses > 1 ? " processes" : " process");
}

}  // namespace brindle::WidgetCopy
