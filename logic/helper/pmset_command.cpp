#include "logic/helper/pmset_command.h"

namespace brindle {

std::array<std::string_view, 3> pmsetArguments(PmsetCommand command) {
  return {"-a", "disablesleep", disablesSleep(command) ? "1" : "0"};
}

std::string pmsetCommandLine(PmsetCommand command) {
  std::string line(kPmsetPath);
  for (const std::string_view argument : pmsetArguments(command)) {
    line += ' ';
    line += argument;
  }
  return line;
}

}  // namespace brindle
