// Taking and looking up inhibitor locks of the login manager.
//
// The seam between LogindSwitch, which decides, and the bus; a scripted one stands behind it in tests.
#pragma once

#include <string>

#include "base/descriptor.h"
#include "base/result.h"

namespace brindle {

/// A lock as it is asked for and as it is listed.
struct InhibitorRequest {
  std::string what;
  std::string who;
  std::string why;
  std::string mode;

  bool operator==(const InhibitorRequest&) const = default;
};

class Inhibitor {
 public:
  Inhibitor() = default;
  Inhibitor(const Inhibitor&) = delete;
  Inhibitor& operator=(const Inhibitor&) = delete;
  virtual ~Inhibitor() = default;

  /// Takes a lock, which is held until the descriptor is closed. Blocks for a bounded time. A failure's code is the
  /// errno value that stands for the bus error, and `doing` holds the error's name and text.
  [[nodiscard]] virtual Result<Descriptor> inhibit(const InhibitorRequest& request) = 0;
  /// Whether this process's lock is listed. Fails when the login manager does not answer.
  [[nodiscard]] virtual Result<bool> isListed(const InhibitorRequest& request) = 0;
};

}  // namespace brindle
