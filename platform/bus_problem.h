// What the bus's error replies mean for somebody who calls the helper.
//
// Used by the bus edition of the helper client. Pure, so that it is tested on every system.
#pragma once

#include <string_view>

#include "platform/helper_client.h"

namespace brindle {

/// The kind and text of the error reply `name` with the bus's own `text`, which may be empty. Names that are not known
/// are trouble that may pass: unreachable.
[[nodiscard]] HelperProblem busProblem(std::string_view name, std::string_view text);

/// There is no helper on the bus, and none to be started.
[[nodiscard]] HelperProblem helperMissingOnBus();

}  // namespace brindle
