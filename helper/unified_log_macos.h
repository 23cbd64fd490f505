// The daemon's messages in the system's unified log, readable by everybody.
//
// Made by main, lives as long as the process. Any thread.
//
//   log stream --predicate 'subsystem == "app.brindle.Brindle.helper"'
#pragma once

#include <os/log.h>

#include "helper/helper_log.h"

namespace brindle {

class UnifiedLog final : public HelperLog {
 public:
  /// Subsystem HelperIdentity::helperLabel, category HelperIdentity::kLogCategory.
  UnifiedLog();

  void event(std::string_view text) override;
  void error(std::string_view text) override;

 private:
  os_log_t log_;
};

}  // namespace brindle
