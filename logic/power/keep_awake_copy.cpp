#include "logic/power/keep_awake_copy.h"

#include <string_view>
#include <unordered_set>
#include <variant>

#include "base/text.h"

namespace brindle::KeepAwakeCopy {
namespace {

struct StatusLine {
  std::string operator()(const KeepAwakeHolding& holding) const { return "Awake for " + names(holding.names); }
  std::string operator()(const KeepAwakeReleasedBattery& released) const {
    return "Let go at " + std::to_string(released.percent) + "% battery";
  }
  std::string operator()(const KeepAwakeReleasedThermal& released) const {
    return "Let go, the Mac is " + lowerCase(label(released.level));
  }
  std::string operator()(const KeepAwakeOff&) const { return "Keep awake is off"; }
  std::string operator()(const KeepAwakeWaiting&) const { return "Ready, no agent is working"; }
};

std::string sessionsFinish(std::size_t count) {
  if (count == 1) return "the session finishes";
  if (count == 2) return "both sessions finish";
  return "all " + std::to_string(count) + " sessions finish";
}

struct Detail {
  std::string suffix;

  std::string operator()(const KeepAwakeHolding& holding) const {
    return "Display can sleep. Lets go when " + sessionsFinish(holding.names.size()) + ", " + suffix + ".";
  }
  std::string operator()(const KeepAwakeReleasedBattery& released) const {
    return "Below the " + std::to_string(released.floor) +
           "% floor, so your Mac can sleep. Plug in to keep it awake again.";
  }
  std::string operator()(const KeepAwakeReleasedThermal&) const {
    return "Your Mac can sleep to cool down. Brindle holds it again when it cools.";
  }
  std::string operator()(const KeepAwakeOff&) const {
    return "Turn it on to keep the Mac from idle sleep while every AI agent you run is working.";
  }
  std::string operator()(const KeepAwakeWaiting&) const {
    return "Brindle holds the Mac awake when an agent session starts working, and lets go " + suffix + ".";
  }
};

}  // namespace

std::string names(const std::vector<std::string>& list) {
  std::unordered_set<std::string_view> seen;
  std::vector<std::string_view> distinct;
  for (const std::string& name : list) {
    if (seen.insert(name).second) distinct.push_back(name);
  }
  std::string text;
  for (std::size_t i = 0; i < distinct.size(); ++i) {
    if (i > 0) text += i + 1 == distinct.size() ? " and " : ", ";
    text += distinct[i];
  }
  return text;
}

std::string statusLine(const KeepAwakeStatus& status) { return std::visit(StatusLine{}, status); }

std::string detail(const KeepAwakeStatus& status, const KeepAwakeRules& rules) {
  return std::visit(Detail{"at " + std::to_string(rules.batteryFloor) + "% battery or if the Mac gets hot"}, status);
}

std::string notificationTitle(const std::vector<std::string>& list) {
  return "Brindle: keeping awake while " + names(list) + (list.size() == 1 ? " works" : " work");
}

}  // namespace brindle::KeepAwakeCopy
