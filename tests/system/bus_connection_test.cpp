// Both ends of each call are connections of this process.
#include "system/bus_connection_linux.h"

#include <gmock/gmock.h>
#include <stdlib.h>

#include <cerrno>

#include "tests/system/private_bus.h"

namespace brindle {
namespace {

using ::testing::ElementsAre;

const BusMember kEcho{.service = "test.Echo", .path = "/test", .interface = "test.Echo", .member = "Echo"};
constexpr Seconds kLongEnough{20};

int echo(sd_bus_message* call, void* data, sd_bus_error* error) {
  int number = 0;
  if (const int code = sd_bus_message_read(call, "i", &number); code < 0) return code;
  if (number < 0) return sd_bus_error_set(error, "test.Error.Negative", "the number is negative");
  if (number == 0) return 1;  // silence
  if (data != nullptr) ++*static_cast<int*>(data);
  return sd_bus_reply_method_return(call, "i", number);
}

const sd_bus_vtable kMethods[] = {SD_BUS_VTABLE_START(0),
                                  SD_BUS_METHOD("Echo", "i", "i", echo, SD_BUS_VTABLE_UNPRIVILEGED), SD_BUS_VTABLE_END};

struct BusConnectionTest : PrivateBus {
  /// The loop's own connection with the echo on it.
  BusConnection serve() {
    auto bus = connect();
    EXPECT_GE(
        sd_bus_add_object_vtable(bus.get(), nullptr, kEcho.path.c_str(), kEcho.interface.c_str(), kMethods, &answered),
        0);
    EXPECT_TRUE(bus.requestName(kEcho.service));
    return bus;
  }
  static BusMessage echoCall(const BusConnection& bus, int number) {
    auto call = bus.newCall(kEcho).value();
    EXPECT_GE(sd_bus_message_append(call.get(), "i", number), 0);
    return call;
  }

  int answered = 0;
  std::vector<std::string> heard;
};
using BusConnectionCall = BusConnectionTest;
using BusConnectionName = BusConnectionTest;
using BusConnectionSubscription = BusConnectionTest;

TEST(BusConnectionOpen, FailsWithTheSystemsCodeWhereThereIsNoBus) {
  setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/bus", 1);
  const auto bus = BusConnection::openSystem();
  unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
  ASSERT_FALSE(bus);
  EXPECT_EQ(bus.error(), (Failure{.code = ENOENT, .doing = "connect to the system bus"}));
}

TEST_F(BusConnectionCall, GivesTheReplyToItsHandler) {
  const auto server = serve();
  const auto client = connect();
  int received = 0;
  const auto pending = client.callAsync(echoCall(client, 7).get(), kLongEnough, [&](sd_bus_message* reply) {
    EXPECT_EQ(sd_bus_message_get_error(reply), nullptr);
    sd_bus_message_read(reply, "i", &received);
    loop.exit(0);
  });
  ASSERT_TRUE(pending);
  EXPECT_EQ(loop.run(), 0);
  EXPECT_EQ(received, 7);
}

TEST_F(BusConnectionCall, GivesErrorRepliesAndTimeoutsToItsHandlerToo) {
  const auto server = serve();
  const auto client = connect();
  const auto note = [&](sd_bus_message* reply) {
    heard.emplace_back(sd_bus_message_get_error(reply)->name);
    if (heard.size() == 2) loop.exit(0);
  };
  const auto refused = client.callAsync(echoCall(client, -1).get(), kLongEnough, note);
  const auto silent = client.callAsync(echoCall(client, 0).get(), Seconds{0.05}, note);
  ASSERT_TRUE(refused && silent);
  EXPECT_EQ(loop.run(), 0);
  EXPECT_THAT(heard, ElementsAre("test.Error.Negative", "org.freedesktop.DBus.Error.NoReply"));
}

TEST_F(BusConnectionCall, IsNotAnsweredOnceItsWatchIsGone) {
  const auto server = serve();
  const auto client = connect();
  auto dropped =
      client.callAsync(echoCall(client, 1).get(), kLongEnough, [&](sd_bus_message*) { heard.emplace_back("dropped"); });
  ASSERT_TRUE(dropped);
  dropped = BusWatch();
  const auto kept = client.callAsync(echoCall(client, 2).get(), kLongEnough, [&](sd_bus_message*) { loop.exit(0); });
  ASSERT_TRUE(kept);
  EXPECT_EQ(loop.run(), 0);
  EXPECT_EQ(answered, 2) << "both were sent";
  EXPECT_TRUE(heard.empty());
}

TEST_F(BusConnectionCall, MayEndItsWatchInsideItsHandler) {
  const auto server = serve();
  const auto client = connect();
  BusWatch watch;
  auto pending = client.callAsync(echoCall(client, 1).get(), kLongEnough, [&](sd_bus_message*) {
    watch = BusWatch();
    heard.emplace_back("ran on");
    loop.exit(0);
  });
  ASSERT_TRUE(pending);
  watch = std::move(*pending);
  EXPECT_EQ(loop.run(), 0);
  EXPECT_THAT(heard, ElementsAre("ran on"));
}

TEST_F(BusConnectionCall, WaitsForTheReplyOrTheError) {
  const auto client = connect();
  auto call = client.newCall({.service = "org.freedesktop.DBus",
                              .path = "/org/freedesktop/DBus",
                              .interface = "org.freedesktop.DBus",
                              .member = "GetId"});
  ASSERT_TRUE(call);
  const auto reply = client.call(call->get(), kLongEnough);
  ASSERT_TRUE(reply);
  const char* id = nullptr;
  EXPECT_GT(sd_bus_message_read(reply->get(), "s", &id), 0);

  const auto nobody = client.call(echoCall(client, 1).get(), kLongEnough);
  ASSERT_FALSE(nobody);
  EXPECT_EQ(nobody.error().name, "org.freedesktop.DBus.Error.ServiceUnknown");
  EXPECT_NE(nobody.error().code, 0);
  EXPECT_NE(nobody.error().text, "");
}

TEST_F(BusConnectionCall, ReportsATimeoutAsAnErrorWithAName) {
  const auto server = serve();  // the loop does not run, so it never answers
  const auto client = connect();
  const auto silent = client.call(echoCall(client, 1).get(), Seconds{0.02});
  ASSERT_FALSE(silent);
  EXPECT_EQ(silent.error().code, ETIMEDOUT);
  EXPECT_NE(silent.error().name, "");
}

TEST_F(BusConnectionCall, CannotBeBuiltForANameThatIsNone) {
  const auto client = connect();
  EXPECT_FALSE(client.newCall({.service = "not a name", .path = "/", .interface = "a.b", .member = "C"}));
}

TEST_F(BusConnectionName, BelongsToOneConnectionOnly) {
  const auto first = connect();
  const auto second = connect();
  EXPECT_TRUE(first.requestName("test.Name"));
  EXPECT_EQ(second.requestName("test.Name").error().code, EEXIST);
  EXPECT_EQ(first.requestName("test.Name").error().code, EALREADY);
}

TEST_F(BusConnectionSubscription, HearsOnlyTheSignalsWithItsFirstArgument) {
  const auto listener = connect();
  const auto speaker = connect();
  const BusMember signal{.service = "", .path = "/test", .interface = "test.Signals", .member = "Changed"};
  const auto watch = listener.subscribe({.signal = signal, .firstArgument = "wanted"}, [&](sd_bus_message* message) {
    const char *name = nullptr, *value = nullptr;
    EXPECT_GT(sd_bus_message_read(message, "ss", &name, &value), 0);
    heard.push_back(std::string(name) + " " + value);
    if (heard.back() == "wanted last") loop.exit(0);
  });
  ASSERT_TRUE(watch);
  for (const auto& [name, value] : {std::pair{"wanted", "first"}, {"other", "never"}, {"wanted", "last"}}) {
    EXPECT_GE(sd_bus_emit_signal(speaker.get(), "/test", "test.Signals", "Changed", "ss", name, value), 0);
  }
  EXPECT_EQ(loop.run(), 0);
  EXPECT_THAT(heard, ElementsAre("wanted first", "wanted last"));
}

TEST_F(BusConnectionSubscription, EndsWithItsWatchAlsoInsideItsHandler) {
  const auto listener = connect();
  const auto speaker = connect();
  const BusMember signal{.service = "", .path = "/test", .interface = "test.Signals", .member = "Changed"};
  BusWatch once;
  auto watch = listener.subscribe({.signal = signal}, [&](sd_bus_message*) {
    once = BusWatch();
    heard.emplace_back("once");
  });
  ASSERT_TRUE(watch);
  once = std::move(*watch);
  const auto end =
      listener.subscribe({.signal = {"", "/test", "test.Signals", "End"}}, [&](sd_bus_message*) { loop.exit(0); });
  ASSERT_TRUE(end);
  for (const char* member : {"Changed", "Changed", "End"}) {
    EXPECT_GE(sd_bus_emit_signal(speaker.get(), "/test", "test.Signals", member, ""), 0);
  }
  EXPECT_EQ(loop.run(), 0);
  EXPECT_THAT(heard, ElementsAre("once"));
}

}  // namespace
}  // namespace brindle
