#include "cli/setup_edit.h"

#include "inventory/program_identity.h"

namespace brindle {

bool isOurProgram(std::string_view path, std::string_view program) {
  return path == program || baseName(path) == "brindle";
}

}  // namespace brindle
