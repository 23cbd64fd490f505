#include "platform/host.h"

namespace brindle {

const SystemProcessRules& hostRules() { return SystemProcessRules::forMacOS(); }

}  // namespace brindle
