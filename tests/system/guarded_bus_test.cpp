// What strangers on the bus can do to a connection.
#include <fcntl.h>
#include <gmock/gmock.h>

#include "base/descriptor.h"
#include "tests/system/private_bus.h"

namespace brindle {
namespace {

using ::testing::ElementsAre;

struct ForgedSignals : PrivateBus {
  /// What a listener hears of the end of a name, first by a lie for it alone and then from the bus.
  std::vector<std::string> heardOfTheEnd(bool guarded) {
    std::vector<std::string> senders;
    const auto listener = connect();
    if (guarded) {
      EXPECT_TRUE(listener.dropForgedSignals());
    }
    const BusMember changed{.service = "org.freedesktop.DBus",
                            .path = "/org/freedesktop/DBus",
                            .interface = "org.freedesktop.DBus",
                            .member = "NameOwnerChanged"};
    auto victim = std::make_unique<BusConnection>(connect());
    const std::string name = uniqueName(*victim);
    const auto watch = listener.subscribe({.signal = changed, .firstArgument = name}, [&](sd_bus_message* signal) {
      senders.emplace_back(sd_bus_message_get_sender(signal));
      if (senders.back() == "org.freedesktop.DBus") loop.exit(0);
    });
    EXPECT_TRUE(watch);
    const auto liar = connect();
    const std::string liarName = uniqueName(liar);
    sd_bus_message* lie = nullptr;
    EXPECT_GE(sd_bus_message_new_signal(liar.get(), &lie, changed.path.c_str(), changed.interface.c_str(),
                                        changed.member.c_str()),
              0);
    const BusMessage owned(lie);
    EXPECT_GE(sd_bus_message_append(lie, "sss", name.c_str(), name.c_str(), ""), 0);
    EXPECT_GE(sd_bus_send_to(liar.get(), lie, uniqueName(listener).c_str(), nullptr), 0);
    EXPECT_GE(sd_bus_flush(liar.get()), 0);
    victim.reset();
    EXPECT_EQ(loop.run(), 0);
    for (auto& sender : senders) {
      if (sender == liarName) sender = "liar";
    }
    return senders;
  }
  static std::string uniqueName(const BusConnection& bus) {
    const char* name = nullptr;
    EXPECT_GE(sd_bus_get_unique_name(bus.get(), &name), 0);
    return name;
  }
};

TEST_F(ForgedSignals, AreHeardUnlessTheyAreDropped) {
  EXPECT_THAT(heardOfTheEnd(false), ElementsAre("liar", "org.freedesktop.DBus"));
}

TEST_F(ForgedSignals, AreDroppedWithoutTheBusesOwn) {
  EXPECT_THAT(heardOfTheEnd(true), ElementsAre("org.freedesktop.DBus"));
}

struct Descriptors : PrivateBus {
  /// The error that a call with a descriptor gets from a connection on which nothing can be called.
  std::string errorFrom(const BusConnection& server) {
    EXPECT_TRUE(server.requestName("test.Server"));
    const auto client = connect();
    const auto call = client.newCall({.service = "test.Server", .path = "/", .interface = "test.I", .member = "M"});
    const Descriptor any(open("/dev/null", O_RDONLY | O_CLOEXEC));
    EXPECT_GE(sd_bus_message_append(call->get(), "h", any.get()), 0);
    std::string name = "no error";
    const auto pending = client.callAsync(call->get(), Seconds{20}, [&](sd_bus_message* reply) {
      if (const auto* error = sd_bus_message_get_error(reply)) name = error->name;
      loop.exit(0);
    });
    EXPECT_TRUE(pending);
    EXPECT_EQ(loop.run(), 0);
    return name;
  }
};

TEST_F(Descriptors, ReachAConnectionAsAnyOtherArgument) {
  EXPECT_EQ(errorFrom(connect()), "org.freedesktop.DBus.Error.UnknownObject");
}

TEST_F(Descriptors, AreStoppedByTheBusBeforeAConnectionThatTakesNone) {
  const auto other = connect();
  auto server = BusConnection::openWithoutDescriptors(other);
  ASSERT_TRUE(server);
  ASSERT_TRUE(server->attach(loop));
  EXPECT_EQ(errorFrom(*server), "org.freedesktop.DBus.Error.NotSupported");
}

}  // namespace
}  // namespace brindle
