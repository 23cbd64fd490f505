// Asks a helper twice when the first one was just ending itself.
//
// A helper ends itself when nobody has needed it for a while. A request to switch sleep off that arrives in that very
// moment gets an error instead of an answer, and is one for the next helper, which the second call starts. Used by the
// editions of the helper client, each of which sends in its own way. One thread, the loop's; nothing may answer from
// inside the call that sends.
#pragma once

#include <cstdint>
#include <functional>

#include "platform/helper_client.h"

namespace brindle {

class AskAgain {
 public:
  using Send = std::function<void(const SleepRequest&, HelperClient::SleepAnswered)>;

  /// `send` makes one call; its answers never outlive this object. `now` reads the boot clock.
  AskAgain(Send send, std::function<Seconds()> now);

  /// Sends the request, and a second time when it was one to switch sleep off, nobody could be reached within
  /// kAskAgainWithin (strictly less), and no other request has been made since. `answered` gets the last answer, once.
  void ask(const SleepRequest& request, HelperClient::SleepAnswered answered);

 private:
  Send send_;
  std::function<Seconds()> now_;
  std::uint64_t lastRequest_ = 0;
};

/// An error that comes sooner than this is that of a helper that was ending itself, or of whoever carries the calls for
/// it. A later one is the end of somebody's patience, which asking again would only double.
inline constexpr Seconds kAskAgainWithin{5};

}  // namespace brindle
