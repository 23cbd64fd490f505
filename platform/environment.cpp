#include "platform/environment.h"

#include <cstdlib>

namespace brindle {

Environment processEnvironment() {
  return [](const std::string& name) -> std::optional<std::string> {
    const char* value = std::getenv(name.c_str());
    if (value == nullptr) return std::nullopt;
    return std::string(value);
  };
}

}  // namespace brindle
