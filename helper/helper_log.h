// Where the daemon says what it did.
//
// Implemented over the platform's log under the helper's label, and by a recording log in tests. Called on the
// daemon's queue and during start-up. Every text may be read by everybody.
#pragma once

#include <string_view>

namespace brindle {

class HelperLog {
 public:
  HelperLog() = default;
  HelperLog(const HelperLog&) = delete;
  HelperLog& operator=(const HelperLog&) = delete;
  virtual ~HelperLog() = default;

  /// Something happened as it should, at the log's default level.
  virtual void event(std::string_view text) = 0;
  /// Something could not be done.
  virtual void error(std::string_view text) = 0;
};

}  // namespace brindle
