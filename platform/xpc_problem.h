// What the error codes of a connection to the helper's Mach service mean for a caller.
//
// Used by the macOS edition of the helper client. Pure: the codes are Foundation's, as numbers.
#pragma once

#include <string>

#include "platform/helper_client.h"

namespace brindle {

/// NSXPCConnectionInterrupted: the other side has ended, or has thrown us out, before it answered.
inline constexpr long kXpcInterrupted = 4097;
/// NSXPCConnectionInvalid: nobody provides the service, or the connection was closed.
inline constexpr long kXpcInvalid = 4099;
/// NSXPCConnectionReplyInvalid: the answer is not of the declared types.
inline constexpr long kXpcReplyInvalid = 4101;
/// NSXPCConnectionCodeSigningRequirementFailure: the helper is not signed as it has to be.
inline constexpr long kXpcSignatureRefused = 4102;

struct XpcError {
  /// The code in Foundation's error domain.
  long code = 0;
  /// The system's own words.
  std::string description;
  /// Whether this program is signed as the helper demands of its clients.
  bool ownSignatureFits = false;
};

/// An unsigned or foreign client is only cut off, without a reason: so an interruption counts as a refusal exactly
/// when our own signature does not fit, and as trouble that may pass when it does.
[[nodiscard]] HelperProblem problemOfXpcError(const XpcError& error);

}  // namespace brindle
