// The daemon's service as the platform's object runtime knows it.
//
// Exported by the daemon, declared to their connections by its clients: both build their interface from this one
// declaration, so the selectors and argument types cannot drift apart. The name is HelperIdentity::kProtocolName.
// Messages arrive on a private queue of each connection; each reply block must be called exactly once and has to be
// copied before it outlives the call.
#pragma once

#import <Foundation/Foundation.h>

#include <cstdint>

NS_ASSUME_NONNULL_BEGIN

@protocol BrindleHelperXPC

/// Switches sleep off for at most `maxDuration` seconds, or on. Replies whether it holds, and a text for people.
- (void)setSleepDisabled:(BOOL)disabled
             maxDuration:(double)maxDuration
                   reply:(void (^)(BOOL ok, NSString* message))reply;

/// A sign of life from a holder. Replies whether sleep is still disabled.
- (void)heartbeatWithReply:(void (^)(BOOL sleepDisabled))reply;

/// Replies the state, the seconds that are left of it, and the daemon's version.
- (void)statusWithReply:(void (^)(BOOL sleepDisabled, double remaining, std::int64_t version))reply;

@end

NS_ASSUME_NONNULL_END
