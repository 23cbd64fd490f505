#include "platform/helper_client.h"

#include <map>
#include <optional>

#include "logic/helper/helper_identity.h"
#include "platform/ask_again.h"
#include "platform/bus_problem.h"
#include "system/boot_clock.h"
#include "system/bus_connection_linux.h"

namespace brindle {

namespace {

/// Long enough for somebody to read the question of the authorisation dialogue and type a password.
constexpr Seconds kRequestTimeout{120};
constexpr Seconds kHeartbeatTimeout{10};
constexpr Seconds kStatusTimeout{5};

constexpr const char* kBusService = "org.freedesktop.DBus";
constexpr const char* kBusPath = "/org/freedesktop/DBus";

std::string helperName() { return std::string(HelperIdentity::kBusName); }

HelperProblem problemOf(const Failure& failure) { return {HelperProblemKind::unreachable, failure.message()}; }

/// The error that `reply` is, or none.
std::optional<HelperProblem> problemOf(sd_bus_message* reply) {
  const sd_bus_error* error = sd_bus_message_get_error(reply);
  if (error == nullptr) return std::nullopt;
  return busProblem(error->name, error->message != nullptr ? error->message : "");
}

HelperProblem unreadable() { return {HelperProblemKind::unreachable, "the helper's answer cannot be read"}; }

class BusHelperClient : public HelperClient {
 public:
  explicit BusHelperClient(EventLoop& loop) : loop_(loop) { static_cast<void>(connect()); }

  void setSleepDisabled(const SleepRequest& request, SleepAnswered answered) override {
    again_.ask(request, std::move(answered));
  }

  void heartbeat(HeartbeatAnswered answered) override {
    send<bool>(newCall(HelperIdentity::kHeartbeatMember), kHeartbeatTimeout, std::move(answered),
               [](sd_bus_message* reply) {
                 int disabled = 0;
                 const bool read = sd_bus_message_read(reply, "b", &disabled) > 0;
                 return read ? HelperAnswer<bool>(disabled != 0) : tl::make_unexpected(unreadable());
               });
  }

  void status(StatusAnswered answered) override {
    auto message = newCall(HelperIdentity::kStatusMember);
    if (message) sd_bus_message_set_auto_start(message->get(), 0);
    const auto decide = [this, answered](const HelperAnswer<HelperStatus>& answer) {
      if (answer || answer.error().kind != HelperProblemKind::notInstalled) return answered(answer);
      whetherInstalled(answered);
    };
    send<HelperStatus>(std::move(message), kStatusTimeout, decide, [](sd_bus_message* reply) {
      int disabled = 0;
      double remaining = 0;
      std::int64_t version = 0;
      if (sd_bus_message_read(reply, "bdx", &disabled, &remaining, &version) <= 0) {
        return HelperAnswer<HelperStatus>(tl::make_unexpected(unreadable()));
      }
      return HelperAnswer<HelperStatus>(
          {.sleepDisabled = disabled != 0, .remaining = Seconds{remaining}, .version = version});
    });
  }

  void onPresence(std::function<void(HelperPresence)> changed) override { changed_ = std::move(changed); }

 private:
  void ask(const SleepRequest& request, SleepAnswered answered) {
    auto message = newCall(HelperIdentity::kSetSleepDisabledMember);
    if (message) {
      sd_bus_message_append(message->get(), "bd", request.disabled ? 1 : 0, request.maxDuration.count());
      // Lets the authorisation service ask the user instead of refusing at once.
      sd_bus_message_set_allow_interactive_authorization(message->get(), 1);
    }
    send<SleepReply>(std::move(message), kRequestTimeout, std::move(answered), [](sd_bus_message* reply) {
      int ok = 0;
      const char* text = nullptr;
      const bool read = sd_bus_message_read(reply, "bs", &ok, &text) > 0;
      return read ? HelperAnswer<SleepReply>({.ok = ok != 0, .message = text}) : tl::make_unexpected(unreadable());
    });
  }

  /// Connects where there is no open connection; a bus that went away is tried again at each call.
  Outcome connect() {
    if (bus_ && sd_bus_is_open(bus_->get()) > 0) return {};
    // Nothing that was on the way over the old connection will be answered, and the answers say so themselves.
    presence_ = {};
    auto opened = BusConnection::openSystem();
    if (!opened) return tl::make_unexpected(opened.error());
    if (auto attached = opened->attach(loop_); !attached) return attached;
    retired_ = std::move(bus_);
    bus_ = std::make_unique<BusConnection>(*std::move(opened));
    return watchOwner();
  }

  Outcome watchOwner() {
    const std::string rule = std::string("type='signal',sender='") + kBusService +
                             "',interface='org.freedesktop.DBus',member='NameOwnerChanged',arg0='" + helperName() + "'";
    sd_bus_slot* slot = nullptr;
    const int code = sd_bus_add_match(bus_->get(), &slot, rule.c_str(), ownerChanged, this);
    if (code < 0) return fail(-code, "watch for " + helperName());
    presence_.reset(slot);
    return {};
  }

  static int ownerChanged(sd_bus_message* message, void* data, sd_bus_error*) {
    const char* name = nullptr;
    const char* before = nullptr;
    const char* after = nullptr;
    if (sd_bus_message_read(message, "sss", &name, &before, &after) <= 0) return 0;
    auto* self = static_cast<BusHelperClient*>(data);
    const auto changed = self->changed_;
    if (!changed) return 0;
    const bool gone = *before != '\0';
    const bool come = *after != '\0';
    if (gone) changed(HelperPresence::vanished);
    if (come) changed(HelperPresence::appeared);
    return 0;
  }

  Result<BusMessage> newCall(std::string_view member) {
    if (auto connected = connect(); !connected) return tl::make_unexpected(connected.error());
    return bus_->newCall({.service = helperName(),
                          .path = std::string(HelperIdentity::kObjectPath),
                          .interface = std::string(HelperIdentity::kInterface),
                          .member = std::string(member)});
  }

  template <typename T>
  void send(Result<BusMessage> message, Seconds timeout, std::function<void(const HelperAnswer<T>&)> answered,
            HelperAnswer<T> (*read)(sd_bus_message*)) {
    if (!message) return later(answered, HelperAnswer<T>(tl::make_unexpected(problemOf(message.error()))));
    const auto number = ++lastCall_;
    auto sent = bus_->callAsync(message->get(), timeout, [this, number, answered, read](sd_bus_message* reply) {
      const auto problem = problemOf(reply);
      const HelperAnswer<T> answer = problem ? HelperAnswer<T>(tl::make_unexpected(*problem)) : read(reply);
      calls_.erase(number);
      answered(answer);
    });
    if (!sent) return later(answered, HelperAnswer<T>(tl::make_unexpected(problemOf(sent.error()))));
    calls_.emplace(number, *std::move(sent));
  }

  /// Answers from the loop instead of from inside the call.
  template <typename T>
  void later(std::function<void(const HelperAnswer<T>&)> answered, HelperAnswer<T> answer) {
    loop_.post([alive = std::weak_ptr(alive_), answered = std::move(answered), answer = std::move(answer)] {
      if (!alive.expired()) answered(answer);
    });
  }

  /// The helper does not run: tells one that would be started from one that is not there.
  void whetherInstalled(const StatusAnswered& answered) {
    auto message = bus_->newCall({kBusService, kBusPath, kBusService, "ListActivatableNames"});
    send<HelperStatus>(std::move(message), kStatusTimeout, answered, [](sd_bus_message* reply) {
      HelperAnswer<HelperStatus> answer = tl::make_unexpected(helperMissingOnBus());
      if (sd_bus_message_enter_container(reply, 'a', "s") <= 0) return answer;
      const char* name = nullptr;
      while (sd_bus_message_read(reply, "s", &name) > 0) {
        if (name == HelperIdentity::kBusName) answer = HelperStatus{};
      }
      return answer;
    });
  }

  EventLoop& loop_;
  std::function<void(HelperPresence)> changed_;
  std::uint64_t lastCall_ = 0;
  std::shared_ptr<int> alive_ = std::make_shared<int>();
  // A closed connection stays until the next one closes: its last answers may be on their way through it.
  std::unique_ptr<BusConnection> retired_;
  std::unique_ptr<BusConnection> bus_;
  BusSlot presence_;
  AskAgain again_{[this](const SleepRequest& request, SleepAnswered answered) { ask(request, std::move(answered)); },
                  bootClockNow};
  std::map<std::uint64_t, BusWatch> calls_;
};

}  // namespace

std::unique_ptr<HelperClient> connectToHelper(EventLoop& loop) { return std::make_unique<BusHelperClient>(loop); }

}  // namespace brindle
