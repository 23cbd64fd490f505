#include "helper/sleep_switch.h"

namespace brindle {

std::string switchLogLine(std::string_view deed, int exitStatus, std::optional<RevertReason> reason) {
  std::string line(deed);
  line += " exit ";
  line += std::to_string(exitStatus);
  line += " reason ";
  line += reason ? textOf(*reason) : "request";
  return line;
}

}  // namespace brindle
