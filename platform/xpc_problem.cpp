#include "platform/xpc_problem.h"

#include "logic/helper/helper_identity.h"

namespace brindle {

namespace {

std::string installText() {
  return "nothing provides " + std::string(HelperIdentity::machServiceName) +
         "; install it with 'sudo cmake --install build/release' and 'sudo launchctl bootstrap system "
         "/Library/LaunchDaemons/" +
         std::string(HelperIdentity::plistName) + "'";
}

std::string signText() {
  return "this program is not signed as " + std::string(HelperIdentity::appBundleID) + " of team " +
         std::string(HelperIdentity::teamID) + "; sign it with 'codesign --identifier " +
         std::string(HelperIdentity::appBundleID) + "'";
}

}  // namespace

HelperProblem problemOfXpcError(const XpcError& error) {
  switch (error.code) {
    case kXpcInvalid:
      return {HelperProblemKind::notInstalled, installText()};
    case kXpcSignatureRefused:
      return {HelperProblemKind::refused, "the helper is not signed by team " + std::string(HelperIdentity::teamID)};
    case kXpcInterrupted:
      if (!error.ownSignatureFits) return {HelperProblemKind::refused, signText()};
      return {HelperProblemKind::unreachable, "the helper ended before it answered"};
    case kXpcReplyInvalid:
      return {HelperProblemKind::unreachable, "the helper's answer cannot be read"};
    default:  // a number from the system, not an enumeration of ours
      return {HelperProblemKind::unreachable,
              error.description.empty() ? "error " + std::to_string(error.code) : error.description};
  }
}

}  // namespace brindle
