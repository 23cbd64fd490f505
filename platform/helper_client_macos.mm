// The helper client over an XPC connection. Its threads only leave answers in the mailbox; everything else happens on
// the loop's thread.
#import <Foundation/Foundation.h>

#include <map>
#include <optional>
#include <utility>
#include <variant>

#include "logic/helper/helper_identity.h"
#include "logic/helper/helper_protocol_macos.h"
#include "platform/ask_again.h"
#include "platform/code_signature_macos.h"
#include "platform/helper_client.h"
#include "platform/loop_mailbox.h"
#include "platform/sleep_setting_macos.h"
#include "platform/xpc_problem.h"
#include "system/boot_clock.h"

namespace brindle {
namespace {

/// The helper answers after pmset has ended, and queues behind the requests of others.
constexpr Seconds kRequestTimeout{30};
constexpr Seconds kHeartbeatTimeout{10};

NSString* foundationText(std::string_view text) {
  NSString* const result = [[NSString alloc] initWithBytes:text.data()
                                                    length:text.size()
                                                  encoding:NSUTF8StringEncoding];
  return result != nil ? result : @"";
}

std::string plainText(NSString* _Nullable text) {
  const char* const bytes = text.UTF8String;
  return bytes != nullptr ? bytes : "";
}

class XpcHelperClient final : public HelperClient {
 public:
  explicit XpcHelperClient(EventLoop& loop) : loop_(loop), mailbox_(std::make_shared<LoopMailbox>(loop)) {}
  ~XpcHelperClient() override {
    mailbox_->close();
    [connection_ invalidate];
  }
  XpcHelperClient(const XpcHelperClient&) = delete;
  XpcHelperClient& operator=(const XpcHelperClient&) = delete;

  void setSleepDisabled(const SleepRequest& request, SleepAnswered answered) override {
    again_.ask(request, std::move(answered));
  }

  void heartbeat(HeartbeatAnswered answered) override {
    const auto number = begin<bool>(kHeartbeatTimeout, std::move(answered));
    const auto deliver = delivery<bool>(number);
    [proxy(number) heartbeatWithReply:^(BOOL sleepDisabled) {
      deliver(sleepDisabled != NO);
    }];
  }

  // The helper would take the asker for a client whose end switches sleep back on, so the system is asked instead.
  // It does not know how long sleep stays off.
  void status(StatusAnswered answered) override {
    HelperAnswer<HelperStatus> answer = tl::make_unexpected(
        HelperProblem{HelperProblemKind::unreachable, "the system does not tell whether sleep is off"});
    if (const auto disabled = systemSleepDisabled()) answer = HelperStatus{.sleepDisabled = *disabled};
    post([answered = std::move(answered), answer = std::move(answer)](XpcHelperClient&) { answered(answer); });
  }

  void onPresence(std::function<void(HelperPresence)> changed) override { changed_ = std::move(changed); }

 private:
  using CallNumber = std::uint64_t;

  // A request that waits in the service's own port starts the next helper by itself. One that a helper has taken in
  // before it ended comes back as an interruption; the connection outlives that, and its next message starts a helper.
  void ask(const SleepRequest& request, SleepAnswered answered) {
    const auto number = begin<SleepReply>(kRequestTimeout, std::move(answered));
    const auto deliver = delivery<SleepReply>(number);
    [proxy(number) setSleepDisabled:request.disabled ? YES : NO
                        maxDuration:request.maxDuration.count()
                              reply:^(BOOL ok, NSString* message) {
                                deliver({.ok = ok != NO, .message = plainText(message)});
                              }];
  }

  template <typename T>
  using Answered = std::function<void(const HelperAnswer<T>&)>;

  /// A call that has no answer yet. Whatever comes first of reply, error and timeout answers it and takes it away.
  struct Call {
    std::variant<SleepAnswered, HeartbeatAnswered> answered;
    EventSource timeout;
  };

  template <typename T>
  CallNumber begin(Seconds patience, Answered<T> answered) {
    const auto number = ++lastCall_;
    Call call{.answered = std::move(answered), .timeout = {}};
    auto timeout = loop_.after(patience, [this, number] {
      failCall(number, {HelperProblemKind::unreachable, "the helper does not answer"});
    });
    if (timeout) call.timeout = *std::move(timeout);
    calls_.emplace(number, std::move(call));
    return number;
  }

  std::optional<Call> take(CallNumber number) {
    auto node = calls_.extract(number);
    return node ? std::optional<Call>(std::move(node.mapped())) : std::nullopt;
  }

  template <typename T>
  void finish(CallNumber number, const HelperAnswer<T>& answer) {
    const auto call = take(number);
    if (!call) return;
    if (const auto* answered = std::get_if<Answered<T>>(&call->answered)) (*answered)(answer);
  }

  void failCall(CallNumber number, const HelperProblem& problem) {
    const auto call = take(number);
    if (!call) return;
    std::visit([&](const auto& answered) { answered(tl::make_unexpected(problem)); }, call->answered);
  }

  /// Hands `work` and this client to the loop, from any thread; nothing once the client is gone.
  static void hand(const std::shared_ptr<LoopMailbox>& mailbox, const std::weak_ptr<XpcHelperClient*>& client,
                   std::function<void(XpcHelperClient&)> work) {
    mailbox->post([client, work = std::move(work)] {
      if (const auto alive = client.lock()) work(**alive);
    });
  }
  void post(std::function<void(XpcHelperClient&)> work) { hand(mailbox_, self_, std::move(work)); }

  /// What a reply block does with its answer.
  template <typename T>
  std::function<void(T)> delivery(CallNumber number) {
    return [mailbox = mailbox_, client = std::weak_ptr(self_), number](T value) {
      hand(mailbox, client, [number, value = std::move(value)](XpcHelperClient& self) {
        self.finish<T>(number, HelperAnswer<T>(value));
      });
    };
  }

  id<BrindleHelperXPC> proxy(CallNumber number) {
    if (connection_ == nil) connect();
    const auto mailbox = mailbox_;
    const std::weak_ptr client = self_;
    return [connection_ remoteObjectProxyWithErrorHandler:^(NSError* error) {
      const XpcError plain{.code = error.code,
                           .description = plainText(error.localizedDescription),
                           .ownSignatureFits = error.code != kXpcInterrupted || ownSignatureFits()};
      hand(mailbox, client,
           [number, plain](XpcHelperClient& self) { self.failCall(number, problemOfXpcError(plain)); });
    }];
  }

  void connect() {
    NSXPCConnection* const connection =
        [[NSXPCConnection alloc] initWithMachServiceName:foundationText(HelperIdentity::machServiceName)
                                                 options:NSXPCConnectionPrivileged];
    connection.remoteObjectInterface = [NSXPCInterface interfaceWithProtocol:@protocol(BrindleHelperXPC)];
    // Malformed only when the identifiers are, and those are checked when the build is configured.
    [connection setCodeSigningRequirement:foundationText(HelperIdentity::helperRequirement)];

    const auto mailbox = mailbox_;
    const std::weak_ptr client = self_;
    const auto generation = ++generation_;
    connection.interruptionHandler = ^{
      hand(mailbox, client, [](XpcHelperClient& self) { self.vanished(); });
    };
    connection.invalidationHandler = ^{
      hand(mailbox, client, [generation](XpcHelperClient& self) {
        // An invalid connection never works again: the next call makes a new one.
        if (self.generation_ == generation) self.connection_ = nil;
        self.vanished();
      });
    };
    connection_ = connection;
    [connection resume];
  }

  void vanished() {
    const auto changed = changed_;
    if (changed) changed(HelperPresence::vanished);
  }

  EventLoop& loop_;
  std::shared_ptr<LoopMailbox> mailbox_;
  // Expires with the client; what is still on its way to the loop by then is dropped.
  std::shared_ptr<XpcHelperClient*> self_ = std::make_shared<XpcHelperClient*>(this);
  std::function<void(HelperPresence)> changed_;
  NSXPCConnection* connection_ = nil;
  std::uint64_t generation_ = 0;
  AskAgain again_{[this](const SleepRequest& request, SleepAnswered answered) { ask(request, std::move(answered)); },
                  bootClockNow};
  CallNumber lastCall_ = 0;
  std::map<CallNumber, Call> calls_;
};

}  // namespace

std::unique_ptr<HelperClient> connectToHelper(EventLoop& loop) { return std::make_unique<XpcHelperClient>(loop); }

}  // namespace brindle
