// Why a process is left alone, in the words that every plan and report uses.
//
// Used by the quit planner here and by the protections of the host.
#pragma once

#include <string_view>

namespace brindle::ProtectionText {

inline constexpr std::string_view kSystemProcess = "System process";
inline constexpr std::string_view kOtherUser = "Owned by another user";
inline constexpr std::string_view kBrindle = "Brindle itself";
inline constexpr std::string_view kFrontmost = "The app you're using";
inline constexpr std::string_view kTerminalShell = "Your terminal shell";
/// Followed by the label of the built-in protection.
inline constexpr std::string_view kDefaultPrefix = "Protected by default: ";
inline constexpr std::string_view kUserRule = "Protected by your rule";

}  // namespace brindle::ProtectionText
