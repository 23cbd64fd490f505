// The environment variables of the process, as a value.
//
// Used by whatever follows a variable; tests pass a function over a map. Nothing else asks the process.
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace brindle {

/// The value of the variable; none when it is not set, an empty text when it is set to one.
using Environment = std::function<std::optional<std::string>(const std::string& name)>;

/// The environment of this process. Read-only: nothing changes it while it is used.
[[nodiscard]] Environment processEnvironment();

}  // namespace brindle
