#include "logic/sessions/system_process_rules.h"

#include <gtest/gtest.h>

#include "tests/logic/sessions/sample_processes.h"

namespace brindle {
namespace {

TrackedProcess at(std::string path) {
  TrackedProcess made = process({.pid = 500});
  made.path = std::move(path);
  return made;
}

TrackedProcess named(std::string name) {
  TrackedProcess made = process({.pid = 500});
  made.name = std::move(name);
  return made;
}

TEST(SystemProcessRules, TakesAnOrdinaryProcessOfTheUserForTheirOwn) {
  EXPECT_TRUE(isUserProcess(process({.pid = 500}), kUser));
  EXPECT_FALSE(isUserProcess(process({.pid = 500}), kOtherUser));
}

TEST(SystemProcessRules, NeverTakesPid99ForAUserProcess) {
  EXPECT_FALSE(isUserProcess(process({.pid = 99}), kUser));
  EXPECT_TRUE(isUserProcess(process({.pid = 100}), kUser));
  EXPECT_FALSE(isUserProcess(process({.pid = -1}), kUser));
}

TEST(SystemProcessRules, HasTheStatedMinimumNamesAndPrefixes) {
  const SystemProcessRules expected{
      .minimumPid = 100,
      .names = {"launchd", "kernel_task", "WindowServer", "loginwindow", "Finder", "Dock", "SystemUIServer",
                "coreaudiod"},
      .pathPrefixes = {"/System/", "/usr/libexec/", "/usr/sbin/", "/sbin/", "/Library/Apple/", "/bin/", "/usr/bin/"}};
  EXPECT_EQ(SystemProcessRules::forMacOS(), expected);
}

TEST(SystemProcessRules, KnowsEverySystemName) {
  for (const std::string& name : SystemProcessRules::forMacOS().names) {
    EXPECT_FALSE(isUserProcess(named(name), kUser)) << name;
    EXPECT_TRUE(isUserProcess(named(name + "2"), kUser)) << name;
  }
  EXPECT_TRUE(isUserProcess(named("finder"), kUser));
}

TEST(SystemProcessRules, KnowsEverySystemPrefix) {
  for (const std::string& prefix : SystemProcessRules::forMacOS().pathPrefixes) {
    EXPECT_FALSE(isUserProcess(at(prefix + "tool"), kUser)) << prefix;
    EXPECT_TRUE(isUserProcess(at("/opt" + prefix + "tool"), kUser)) << prefix;
    EXPECT_TRUE(isUserProcess(at(prefix.substr(0, prefix.size() - 1)), kUser)) << prefix;
  }
}

TEST(SystemProcessRules, LetsAProcessWithoutAPathPass) {
  TrackedProcess pathless = process({.pid = 500});
  pathless.path = std::nullopt;
  EXPECT_TRUE(isUserProcess(pathless, kUser));
}

TEST(SystemProcessRules, TellsSystemProcessesWhoeverOwnsThem) {
  EXPECT_TRUE(isSystemProcess(process({.pid = 99})));
  EXPECT_TRUE(isSystemProcess(named("Dock")));
  EXPECT_TRUE(isSystemProcess(at("/bin/sh")));
  TrackedProcess others = process({.pid = 500});
  others.uid = kOtherUser;
  EXPECT_FALSE(isSystemProcess(others));
}

// What runs a Linux system or a desktop session on it; never a program that an agent left behind.
const std::vector<std::string> kLinuxNames{"init",
                                           "systemd",
                                           "(sd-pam)",
                                           "openrc-init",
                                           "runit",
                                           "s6-svscan",
                                           "tini",
                                           "dumb-init",
                                           "docker-init",
                                           "catatonit",
                                           "dbus-daemon",
                                           "dbus-launch",
                                           "dbus-run-session",
                                           "dbus-run-sessio",
                                           "dbus-broker",
                                           "dbus-broker-launch",
                                           "dbus-broker-lau",
                                           "Xorg",
                                           "X",
                                           "Xwayland",
                                           "Xvfb",
                                           "gdm-wayland-session",
                                           "gdm-wayland-ses",
                                           "gdm-x-session",
                                           "sddm",
                                           "lightdm",
                                           "weston",
                                           "gnome-shell",
                                           "gnome-session",
                                           "gnome-session-binary",
                                           "gnome-session-b",
                                           "gnome-session-ctl",
                                           "gnome-session-c",
                                           "mutter",
                                           "plasmashell",
                                           "plasma_session",
                                           "ksmserver",
                                           "kwin_x11",
                                           "kwin_wayland",
                                           "kwin_wayland_wrapper",
                                           "kwin_wayland_wr",
                                           "xfce4-session",
                                           "xfce4-panel",
                                           "xfwm4",
                                           "xfdesktop",
                                           "cinnamon",
                                           "cinnamon-session",
                                           "cinnamon-sessio",
                                           "mate-session",
                                           "mate-panel",
                                           "marco",
                                           "lxqt-session",
                                           "lxqt-panel",
                                           "openbox",
                                           "i3",
                                           "sway",
                                           "Hyprland",
                                           "labwc",
                                           "wayfire",
                                           "niri",
                                           "pulseaudio",
                                           "pipewire",
                                           "pipewire-pulse",
                                           "pipewire-media-session",
                                           "pipewire-media-",
                                           "wireplumber"};

TEST(SystemProcessRules, ForLinuxKnowTheSystemsOwnPrograms) {
  const SystemProcessRules& rules = SystemProcessRules::forLinux();
  EXPECT_EQ(rules.names.size(), kLinuxNames.size());
  for (const std::string& name : kLinuxNames) {
    EXPECT_FALSE(isUserProcess(named(name), kUser, rules)) << name;
    if (name.size() > 15) {
      EXPECT_FALSE(isUserProcess(named(name.substr(0, 15)), kUser, rules)) << name;  // as the kernel cuts it
    }
  }
}

TEST(SystemProcessRules, ForLinuxStartAtPidTwo) {
  EXPECT_TRUE(isSystemProcess(process({.pid = 1}), SystemProcessRules::forLinux()));
  EXPECT_FALSE(isSystemProcess(process({.pid = 2}), SystemProcessRules::forLinux()));
}

TEST(SystemProcessRules, ForLinuxLeaveProgramsOfTheUserVisible) {
  for (const char* path : {"/usr/bin/python3", "/bin/bash", "/System/tool", "/usr/lib/node/node", "/home/ada/sbin/x"}) {
    EXPECT_TRUE(isUserProcess(at(path), kUser, SystemProcessRules::forLinux())) << path;
  }
  EXPECT_TRUE(isUserProcess(named("Finder"), kUser, SystemProcessRules::forLinux()));
}

TEST(SystemProcessRules, ForLinuxHideTheSystemsOwnFolders) {
  for (const char* path :
       {"/usr/lib/systemd/systemd", "/lib/systemd/systemd-logind", "/usr/libexec/x", "/usr/sbin/sshd", "/sbin/init"}) {
    EXPECT_FALSE(isUserProcess(at(path), kUser, SystemProcessRules::forLinux())) << path;
  }
}

TEST(SystemProcessRules, ForLinuxHideTheDesktop) {
  for (const char* name : {"systemd", "init", "dbus-daemon", "dbus-broker", "Xorg", "Xwayland", "gnome-shell",
                           "plasmashell", "kwin_wayland", "pipewire", "wireplumber", "pulseaudio"}) {
    EXPECT_FALSE(isUserProcess(named(name), kUser, SystemProcessRules::forLinux())) << name;
  }
}

TEST(SystemProcessRules, ForLinuxHaveLongNamesAlsoAsTheKernelCutsThem) {
  constexpr std::size_t kKernelNameLength = 15;
  const SystemProcessRules& rules = SystemProcessRules::forLinux();
  int longNames = 0;
  for (const std::string& name : rules.names) {
    if (name.size() <= kKernelNameLength) continue;
    ++longNames;
    EXPECT_TRUE(rules.names.contains(name.substr(0, kKernelNameLength))) << name;
  }
  EXPECT_GT(longNames, 0);
}

}  // namespace
}  // namespace brindle
