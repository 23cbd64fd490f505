// Whether the battery and the heat of the machine allow a hold right now.
//
// Asked by SleepHolder, which lets go while they do not and asks again when they do. One thread, the loop's.
#pragma once

#include <functional>
#include <string>

namespace brindle {

struct PowerVerdict {
  bool mayHold = true;
  /// Why not, for people: "the battery is at 15 %". Empty while a hold is allowed.
  std::string why;

  bool operator==(const PowerVerdict&) const = default;
};

class PowerGate {
 public:
  virtual ~PowerGate() = default;
  /// Tells `changed` the verdict of now before it returns, and then every other one until the gate is destroyed.
  virtual void watch(std::function<void(const PowerVerdict&)> changed) = 0;
};

/// Allows every hold: for machines that tell nothing about their battery and heat.
class OpenPowerGate : public PowerGate {
 public:
  void watch(std::function<void(const PowerVerdict&)> changed) override { changed({}); }
};

}  // namespace brindle
