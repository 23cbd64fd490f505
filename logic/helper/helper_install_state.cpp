#include "logic/helper/helper_install_state.h"

namespace brindle {

std::string_view statusText(HelperInstallState state) {
  switch (state) {
    case HelperInstallState::notInstalled:
      return "Helper not installed";
    case HelperInstallState::needsApproval:
      return "Helper needs approval in System Settings";
    case HelperInstallState::ready:
      return "Helper installed and approved";
    case HelperInstallState::unavailable:
      return "Helper not available in this build";
  }
  return {};
}

}  // namespace brindle
