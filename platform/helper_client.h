// The client side of the helper: asks it to switch sleep off and on, keeps that request alive, reads its state.
//
// Used by the holder of a hold and by the one-shot commands. What is said here holds for every edition, whatever
// carries the calls: on Linux the system bus, on macOS a connection to the helper's Mach service.
//
// The helper takes every client that has asked it to hold, or sent a heartbeat, for a connection: when such a client
// object is destroyed, or its process ends in whatever way, the helper switches sleep back on. status() alone never
// makes a connection and never starts the helper.
//
// Threads: everything is called on the loop's thread, and every function given here is called on it: an edition whose
// answers arrive elsewhere posts them to the loop. No function is ever called from inside the call that was given it.
// Answers that have not arrived when the client is destroyed are dropped.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "base/date.h"
#include "base/enum_text.h"
#include "base/result.h"
#include "logic/helper/helper_reply.h"
#include "logic/helper/sleep_request.h"
#include "system/event_loop.h"

namespace brindle {

enum class HelperProblemKind {
  /// There is no helper, running or to be started.
  notInstalled,
  /// The helper, or whoever guards it, does not admit this user or program. Asking again will not help.
  refused,
  /// No answer: no bus, a helper that cannot be started, has gone, or is too slow. Asking again may help.
  unreachable,
};

template <>
inline constexpr auto kEnumTexts<HelperProblemKind> = std::to_array<EnumText<HelperProblemKind>>({
    {HelperProblemKind::notInstalled, "notInstalled"},
    {HelperProblemKind::refused, "refused"},
    {HelperProblemKind::unreachable, "unreachable"},
});

/// Why a call had no answer. `text` is one line for people, lower case, without full stop, with the next step where
/// there is one.
struct HelperProblem {
  HelperProblemKind kind = HelperProblemKind::unreachable;
  std::string text;

  bool operator==(const HelperProblem&) const = default;
};

template <typename T>
using HelperAnswer = tl::expected<T, HelperProblem>;

/// What becomes of the helper while this client is there.
enum class HelperPresence {
  /// It has ended; whatever it held is over.
  vanished,
  /// A new one has come. Not every edition can tell.
  appeared,
};

template <>
inline constexpr auto kEnumTexts<HelperPresence> = std::to_array<EnumText<HelperPresence>>({
    {HelperPresence::vanished, "vanished"},
    {HelperPresence::appeared, "appeared"},
});

class HelperClient {
 public:
  using SleepAnswered = std::function<void(const HelperAnswer<SleepReply>&)>;
  using HeartbeatAnswered = std::function<void(const HelperAnswer<bool>&)>;
  using StatusAnswered = std::function<void(const HelperAnswer<HelperStatus>&)>;

  virtual ~HelperClient() = default;

  /// Asks to switch sleep off or on, starting the helper where needed. Calls are carried out in their order. The
  /// user may be asked to agree, so an answer can take minutes. A request to switch sleep off that meets a helper which
  /// is just ending itself is made once more.
  virtual void setSleepDisabled(const SleepRequest& request, SleepAnswered answered) = 0;
  /// A sign of life. The answer says whether sleep is still off.
  virtual void heartbeat(HeartbeatAnswered answered) = 0;
  /// The state, without starting the helper: one that is installed and does not run answers as a fresh one would.
  virtual void status(StatusAnswered answered) = 0;
  /// Tells `changed` from now on; replaces an earlier one.
  virtual void onPresence(std::function<void(HelperPresence)> changed) = 0;
};

/// A client of the installed helper. Never fails: what is missing is told by the answers. The loop outlives it.
[[nodiscard]] std::unique_ptr<HelperClient> connectToHelper(EventLoop& loop);

}  // namespace brindle
