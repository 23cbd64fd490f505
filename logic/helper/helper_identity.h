// The names by which the daemon and its applications find and recognise each other.
//
// Used by the daemon, by the client side of the helper, and by the files that register the daemon. Everything is
// built from the identifiers chosen when the build is configured, so no name is written twice. Constants of the
// program: no state, any thread, valid for the life of the process. Every text ends with a NUL behind its last
// character, so data() serves interfaces in C.
#pragma once

#include <cstdint>
#include <string_view>

#include "generated/identity_config.h"

namespace brindle::HelperIdentity {

/// The code-signing team identifier.
inline constexpr std::string_view teamID = BRINDLE_TEAM_ID;
/// The application's bundle identifier.
inline constexpr std::string_view appBundleID = BRINDLE_APP_ID;
/// The daemon's bundle identifier and launchd label; also the subsystem of its log.
inline constexpr std::string_view helperLabel = BRINDLE_APP_ID ".helper";
/// The Mach service name on which the daemon listens.
inline constexpr std::string_view machServiceName = BRINDLE_APP_ID ".helper";
/// The file name of the launchd job description that registers the daemon.
inline constexpr std::string_view plistName = BRINDLE_APP_ID ".helper.plist";
/// The third value of the status reply.
inline constexpr std::int64_t helperVersion = 1;
/// What the daemon demands of every client's code signature.
extern const std::string_view appRequirement;
/// What the application demands of the daemon's code signature.
extern const std::string_view helperRequirement;

/// The category of the daemon's log messages.
inline constexpr std::string_view kLogCategory = "helper";
/// The label of the daemon's serial queue.
inline constexpr std::string_view kQueueLabel = BRINDLE_APP_ID ".helper.state";
/// The name of the protocol as the platform's object runtime knows it.
inline constexpr std::string_view kProtocolName = "BrindleHelperXPC";

// The same service on the system's message bus.

/// The well-known bus name that the daemon owns.
inline constexpr std::string_view kBusName = BRINDLE_APP_ID ".helper";
/// The path of the one object: "/", the application's identifier with slashes for dots, "/helper".
extern const std::string_view kObjectPath;
inline constexpr std::string_view kInterface = BRINDLE_APP_ID ".Helper1";
/// (b disabled, d maxDuration in seconds) → (b ok, s message).
inline constexpr std::string_view kSetSleepDisabledMember = "SetSleepDisabled";
/// () → (b sleepDisabled).
inline constexpr std::string_view kHeartbeatMember = "Heartbeat";
/// () → (b sleepDisabled, d remaining seconds, x version).
inline constexpr std::string_view kStatusMember = "Status";
/// What a client that is neither root nor the daemon's own user must be authorised for.
inline constexpr std::string_view kPolkitAction = BRINDLE_APP_ID ".helper.disable-sleep";

}  // namespace brindle::HelperIdentity
