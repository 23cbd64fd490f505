#include "helper/unified_log_macos.h"

#include <string>

#include "logic/helper/helper_identity.h"

namespace brindle {

UnifiedLog::UnifiedLog()
    : log_(os_log_create(HelperIdentity::helperLabel.data(), HelperIdentity::kLogCategory.data())) {}

// Public, because the log otherwise shows "<private>" for every text that is no constant of the program.
void UnifiedLog::event(std::string_view text) { os_log(log_, "%{public}s", std::string(text).c_str()); }

void UnifiedLog::error(std::string_view text) { os_log_error(log_, "%{public}s", std::string(text).c_str()); }

}  // namespace brindle
