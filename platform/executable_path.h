// Where this program itself lies, for whatever registers it elsewhere.
#pragma once

#include <string>

#include "base/result.h"

namespace brindle {

/// The absolute path of the running executable, links resolved. Fails when the system does not tell; the path may
/// name nothing any more when the file was replaced since.
[[nodiscard]] Result<std::string> executablePath();

}  // namespace brindle
