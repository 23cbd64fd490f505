// The service object, called as the runtime calls it; and real connections over an anonymous listener, whose peer is
// this process itself.
#include "helper/helper_service_macos.h"

#include <dispatch/dispatch.h>
#include <objc/runtime.h>

#include <set>
#include <string>

#include "logic/helper/helper_identity.h"
#include "tests/helper/helper_fakes.h"

namespace brindle {
namespace {

constexpr std::int64_t kPatienceNanoseconds = 10 * static_cast<std::int64_t>(NSEC_PER_SEC);
NSString* const kImpossible = @"anchor apple generic and identifier \"nobody.is.signed.so\"";

struct HelperService : testing::Test {
  HelperService() { static_cast<void>(daemon.started()); }
  BrindleHelperService* service(NSString* requirement) {
    return [[BrindleHelperService alloc] initWithHelper:daemon.helper log:daemon.log requirement:requirement];
  }

  TestDaemon daemon;
};

// Asks for the state over a connection of the listener; answers the error's code, 0 when there was a reply.
NSInteger codeOfStatusOver(NSXPCListener* listener) {
  NSXPCConnection* const connection = [[NSXPCConnection alloc] initWithListenerEndpoint:listener.endpoint];
  connection.remoteObjectInterface = [NSXPCInterface interfaceWithProtocol:@protocol(BrindleHelperXPC)];
  [connection resume];
  dispatch_semaphore_t answered = dispatch_semaphore_create(0);
  __block NSInteger code = 0;
  id<BrindleHelperXPC> const proxy = [connection remoteObjectProxyWithErrorHandler:^(NSError* error) {
    code = error.code;
    dispatch_semaphore_signal(answered);
  }];
  [proxy statusWithReply:^(BOOL, double, std::int64_t) {
    dispatch_semaphore_signal(answered);
  }];
  EXPECT_EQ(dispatch_semaphore_wait(answered, dispatch_time(DISPATCH_TIME_NOW, kPatienceNanoseconds)), 0);
  [connection invalidate];
  return code;
}

TEST_F(HelperService, RepliesOnceToASetRequestWithTheHelpersWords) {
  __block int replies = 0;
  __block std::string text;
  [service(kImpossible) setSleepDisabled:YES
                             maxDuration:3600
                                   reply:^(BOOL ok, NSString* message) {
                                     EXPECT_TRUE(ok);
                                     ++replies;
                                     text = message.UTF8String;
                                   }];
  EXPECT_EQ(replies, 0);  // later, on the queue
  daemon.queue.runAll();
  EXPECT_EQ(replies, 1);
  EXPECT_EQ(text, "Sleep disabled");
}

TEST_F(HelperService, PassesAFailedSwitchOnAsNotOk) {
  daemon.sleepSwitch.fails = true;
  __block int replies = 0;
  [service(kImpossible) setSleepDisabled:YES
                             maxDuration:3600
                                   reply:^(BOOL ok, NSString* message) {
                                     EXPECT_FALSE(ok);
                                     EXPECT_STREQ(message.UTF8String, "scripted failed");
                                     ++replies;
                                   }];
  daemon.queue.runAll();
  EXPECT_EQ(replies, 1);
}

TEST_F(HelperService, RepliesOnceToAHeartbeat) {
  ASSERT_EQ(daemon.set(true, 3600).size(), 1U);
  __block int replies = 0;
  [service(kImpossible) heartbeatWithReply:^(BOOL sleepDisabled) {
    EXPECT_TRUE(sleepDisabled);
    ++replies;
  }];
  daemon.queue.runAll();
  EXPECT_EQ(replies, 1);
}

TEST_F(HelperService, RepliesOnceWithTheWholeStatus) {
  ASSERT_EQ(daemon.set(true, 3600).size(), 1U);
  daemon.pass(100);
  __block int replies = 0;
  [service(kImpossible) statusWithReply:^(BOOL sleepDisabled, double remaining, std::int64_t version) {
    EXPECT_TRUE(sleepDisabled);
    EXPECT_EQ(remaining, 3500.0);
    EXPECT_EQ(version, HelperIdentity::helperVersion);
    ++replies;
  }];
  daemon.queue.runAll();
  EXPECT_EQ(replies, 1);
}

TEST_F(HelperService, RefusesTheMessagesOfAPeerThatDoesNotMeetTheRequirement) {
  NSXPCListener* const listener = [NSXPCListener anonymousListener];
  BrindleHelperService* const delegate = service(kImpossible);
  listener.delegate = delegate;
  [listener resume];
  EXPECT_NE(codeOfStatusOver(listener), 0);
  EXPECT_EQ(daemon.queue.waiting(), 0U) << "a message reached the helper";
  [listener invalidate];
}

TEST_F(HelperService, RefusesEverybodyWhenTheRequirementIsMalformed) {
  NSXPCListener* const listener = [NSXPCListener anonymousListener];
  BrindleHelperService* const delegate = service(@"anchor ((");
  listener.delegate = delegate;
  [listener resume];
  EXPECT_NE(codeOfStatusOver(listener), 0);
  [listener invalidate];
}

TEST(HelperProtocol, HasTheThreeSelectorsOfTheServiceAndNoOther) {
  unsigned int count = 0;
  struct objc_method_description* const methods =
      protocol_copyMethodDescriptionList(@protocol(BrindleHelperXPC), YES, YES, &count);
  std::set<std::string> names;
  for (unsigned int i = 0; i < count; ++i) names.insert(sel_getName(methods[i].name));
  free(methods);
  EXPECT_EQ(names,
            (std::set<std::string>{"setSleepDisabled:maxDuration:reply:", "heartbeatWithReply:", "statusWithReply:"}));
}

TEST(HelperProtocol, HasTheNameOfTheService) {
  EXPECT_EQ(HelperIdentity::kProtocolName, protocol_getName(@protocol(BrindleHelperXPC)));
}

}  // namespace
}  // namespace brindle
