#include "platform/bus_problem.h"

#include <gtest/gtest.h>

namespace brindle {
namespace {

using enum HelperProblemKind;

TEST(BusProblem, SaysHowToInstallAHelperThatIsNotThere) {
  for (const char* name : {"org.freedesktop.DBus.Error.ServiceUnknown", "org.freedesktop.DBus.Error.NameHasNoOwner",
                           "org.freedesktop.DBus.Error.Spawn.ServiceNotFound", "org.freedesktop.systemd1.NoSuchUnit"}) {
    EXPECT_EQ(busProblem(name, "whatever the bus says"), helperMissingOnBus()) << name;
  }
  EXPECT_EQ(helperMissingOnBus().kind, notInstalled);
  EXPECT_EQ(helperMissingOnBus().text,
            "nothing provides app.brindle.Brindle.helper on the system bus; install it with 'sudo cmake --install "
            "build/release' and 'sudo systemctl reload dbus'");
}

TEST(BusProblem, TakesEveryRefusalForFinal) {
  for (const char* name :
       {"org.freedesktop.DBus.Error.AccessDenied", "org.freedesktop.DBus.Error.AuthFailed",
        "org.freedesktop.DBus.Error.InteractiveAuthorizationRequired", "org.freedesktop.systemd1.UnitMasked"}) {
    EXPECT_EQ(busProblem(name, "not for you"), (HelperProblem{refused, "not for you"})) << name;
  }
}

TEST(BusProblem, TakesEverythingElseForTroubleThatMayPass) {
  for (const char* name : {"org.freedesktop.DBus.Error.NoReply", "org.freedesktop.DBus.Error.Timeout",
                           "org.freedesktop.DBus.Error.Disconnected", "org.freedesktop.DBus.Error.Spawn.ChildExited",
                           "org.freedesktop.DBus.Error.UnknownMethod", "org.freedesktop.DBus.Error.AccessDenied2",
                           "System.Error.EPIPE", ""}) {
    EXPECT_EQ(busProblem(name, "a text").kind, unreachable) << name;
  }
}

TEST(BusProblem, ShowsTheNameOfAnErrorWithoutText) {
  EXPECT_EQ(busProblem("org.freedesktop.DBus.Error.NoReply", ""),
            (HelperProblem{unreachable, "org.freedesktop.DBus.Error.NoReply"}));
}

}  // namespace
}  // namespace brindle
