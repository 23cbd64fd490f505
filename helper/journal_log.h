// The daemon's log on Linux: the journal, or standard error where there is no journal.
//
// Entries carry the helper's label as their identifier and their level as priority. Used on the loop's thread.
#pragma once

#include "helper/helper_log.h"

namespace brindle {

class JournalLog final : public HelperLog {
 public:
  void event(std::string_view text) override;
  void error(std::string_view text) override;
};

}  // namespace brindle
