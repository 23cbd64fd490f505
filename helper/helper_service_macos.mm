#include "helper/helper_service_macos.h"

#include <atomic>
#include <string>
#include <string_view>

#include "helper/connection_id.h"
#include "logic/helper/helper_identity.h"

namespace {

NSString* foundationText(std::string_view text) {
  NSString* const result = [[NSString alloc] initWithBytes:text.data()
                                                    length:text.size()
                                                  encoding:NSUTF8StringEncoding];
  return result != nil ? result : @"";
}

NSString* appRequirement() {
  static NSString* const text = foundationText(brindle::HelperIdentity::appRequirement);
  return text;
}

}  // namespace

@implementation BrindleHelperService {
  std::shared_ptr<brindle::Helper> _helper;
  brindle::HelperLog* _log;
  NSString* _requirement;
  std::atomic<std::uint64_t> _connectionCount;
}

- (instancetype)initWithHelper:(std::shared_ptr<brindle::Helper>)helper log:(brindle::HelperLog&)log {
  return [self initWithHelper:std::move(helper) log:log requirement:appRequirement()];
}

- (instancetype)initWithHelper:(std::shared_ptr<brindle::Helper>)helper
                           log:(brindle::HelperLog&)log
                   requirement:(NSString*)requirement {
  self = [super init];
  if (self != nil) {
    _helper = std::move(helper);
    _log = &log;
    _requirement = [requirement copy];
  }
  return self;
}

- (BOOL)listener:(NSXPCListener*)listener shouldAcceptNewConnection:(NSXPCConnection*)connection {
  @try {
    [connection setCodeSigningRequirement:_requirement];
  } @catch (NSException* exception) {
    // The system cannot read the requirement, so nobody can be known to meet it.
    _log->error("the code requirement is malformed: " + std::string(exception.name.UTF8String));
    return NO;
  }
  connection.exportedInterface = [NSXPCInterface interfaceWithProtocol:@protocol(BrindleHelperXPC)];
  connection.exportedObject = self;

  // The connection owns the handler and the handler the connection: so it lives until the system drops the handlers,
  // which it does after invalidation. Both may be called for one connection, in either order; Helper counts one end.
  const brindle::ConnectionId identity{++_connectionCount};
  const std::weak_ptr<brindle::Helper> weakHelper = _helper;
  void (^const ended)(void) = ^{
    static_cast<void>(connection);
    if (const auto helper = weakHelper.lock()) helper->connectionEnded(identity);
  };
  connection.invalidationHandler = ended;
  connection.interruptionHandler = ended;

  _helper->accept(identity);
  [connection resume];
  return YES;
}

- (void)setSleepDisabled:(BOOL)disabled
             maxDuration:(double)maxDuration
                   reply:(void (^)(BOOL ok, NSString* message))reply {
  void (^const answer)(BOOL, NSString*) = [reply copy];
  const brindle::SleepRequest request{.disabled = disabled != NO, .maxDuration = brindle::Seconds{maxDuration}};
  _helper->setSleepDisabled(request, [answer](const brindle::SleepReply& result) {
    answer(result.ok ? YES : NO, foundationText(result.message));
  });
}

- (void)heartbeatWithReply:(void (^)(BOOL sleepDisabled))reply {
  void (^const answer)(BOOL) = [reply copy];
  _helper->heartbeat([answer](bool sleepDisabled) { answer(sleepDisabled ? YES : NO); });
}

- (void)statusWithReply:(void (^)(BOOL sleepDisabled, double remaining, std::int64_t version))reply {
  void (^const answer)(BOOL, double, std::int64_t) = [reply copy];
  _helper->status([answer](const brindle::HelperStatus& status) {
    answer(status.sleepDisabled ? YES : NO, status.remaining.count(), status.version);
  });
}

@end
