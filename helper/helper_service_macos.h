// The daemon's XPC service: the listener's delegate, and the object that every connection exports. It only forwards.
//
// Made by main after Helper has started, lives as long as the process. The system calls it on threads of its own;
// everything that matters happens on Helper's queue. It rejects nobody itself: the system refuses the messages of a
// peer whose code signature does not meet the requirement, and ends that connection.
#pragma once

#import <Foundation/Foundation.h>

#include <memory>

#include "helper/helper.h"
#include "helper/helper_log.h"
#include "logic/helper/helper_protocol_macos.h"

NS_ASSUME_NONNULL_BEGIN

@interface BrindleHelperService : NSObject <NSXPCListenerDelegate, BrindleHelperXPC>

- (instancetype)init NS_UNAVAILABLE;
/// Keeps `helper`; `log` outlives it. What clients must be is HelperIdentity::appRequirement.
- (instancetype)initWithHelper:(std::shared_ptr<brindle::Helper>)helper log:(brindle::HelperLog&)log;
/// The same with another requirement, for listeners that the system does not know.
- (instancetype)initWithHelper:(std::shared_ptr<brindle::Helper>)helper
                           log:(brindle::HelperLog&)log
                   requirement:(NSString*)requirement NS_DESIGNATED_INITIALIZER;

@end

NS_ASSUME_NONNULL_END
