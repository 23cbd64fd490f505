// What a command of brindle tells its caller when it ends.
//
// Used by every command. `run` passes on the status of its own command, and a command that was interrupted ends in
// 128 plus the number of the signal, so an exit code is a plain int and these are its named values.
#pragma once

namespace brindle::ExitCode {

inline constexpr int kDone = 0;
/// A negative answer: nothing found, declined, not held.
inline constexpr int kNegative = 1;
/// Wrong usage, or a failure.
inline constexpr int kFailure = 2;
inline constexpr int kNotExecutable = 126;
inline constexpr int kNotFound = 127;
/// Added to the number of the signal that ended a command; 130 after an interrupt.
inline constexpr int kSignalBase = 128;

}  // namespace brindle::ExitCode
