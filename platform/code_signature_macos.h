// Whether this program is signed as the helper demands of its clients.
//
// Used to tell a refusal from a helper that has gone. Any thread; reads the program's file, so not for every call.
#pragma once

namespace brindle {

/// True when the running code is valid and meets HelperIdentity::appRequirement; false also when that cannot be told.
[[nodiscard]] bool ownSignatureFits();

}  // namespace brindle
