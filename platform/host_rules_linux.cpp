#include "platform/host.h"

namespace brindle {

const SystemProcessRules& hostRules() { return SystemProcessRules::forLinux(); }

}  // namespace brindle
