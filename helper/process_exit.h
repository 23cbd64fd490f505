// How the daemon ends.
//
// Helper decides when; the platform's implementation does it in a way that loses no call. Called on Helper's queue,
// where nothing else runs until the call returns.
#pragma once

namespace brindle {

class ProcessExit {
 public:
  ProcessExit() = default;
  ProcessExit(const ProcessExit&) = delete;
  ProcessExit& operator=(const ProcessExit&) = delete;
  virtual ~ProcessExit() = default;

  /// Whether a call is being answered of which Helper does not know yet; the daemon is not idle then.
  [[nodiscard]] virtual bool callsPending() const = 0;
  /// Ends the process with status 0 because nobody needs it. May return and end it a moment later.
  virtual void exitWhenIdle() = 0;
  /// Ends the process with status 0 after SIGTERM. May return, but then nothing else runs on the queue any more.
  virtual void exitAfterTermination() = 0;
};

}  // namespace brindle
