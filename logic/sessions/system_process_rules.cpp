#include "logic/sessions/system_process_rules.h"

#include <algorithm>
#include <array>

#include "logic/sessions/tracked_process.h"

namespace brindle {
namespace {

// The kernel cuts process names to 15 bytes, so longer names stand here in both forms.
constexpr auto kLinuxNames = std::to_array<const char*>({
    // init systems
    "init",
    "systemd",
    "(sd-pam)",
    "openrc-init",
    "runit",
    "s6-svscan",
    "tini",
    "dumb-init",
    "docker-init",
    "catatonit",
    // session buses
    "dbus-daemon",
    "dbus-launch",
    "dbus-run-session",
    "dbus-run-sessio",
    "dbus-broker",
    "dbus-broker-launch",
    "dbus-broker-lau",
    // display servers and their managers
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
    // desktop shells
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
    // sound servers
    "pulseaudio",
    "pipewire",
    "pipewire-pulse",
    "pipewire-media-session",
    "pipewire-media-",
    "wireplumber",
});

}  // namespace

const SystemProcessRules& SystemProcessRules::forMacOS() {
  static const SystemProcessRules rules{
      .minimumPid = 100,
      .names = {"launchd", "kernel_task", "WindowServer", "loginwindow", "Finder", "Dock", "SystemUIServer",
                "coreaudiod"},
      .pathPrefixes = {"/System/", "/usr/libexec/", "/usr/sbin/", "/sbin/", "/Library/Apple/", "/bin/", "/usr/bin/"},
  };
  return rules;
}

const SystemProcessRules& SystemProcessRules::forLinux() {
  static const SystemProcessRules rules{
      .minimumPid = 2,
      .names = std::unordered_set<std::string>(kLinuxNames.begin(), kLinuxNames.end()),
      .pathPrefixes = {"/usr/lib/systemd/", "/lib/systemd/", "/usr/libexec/", "/usr/sbin/", "/sbin/"},
  };
  return rules;
}

bool isSystemProcess(const TrackedProcess& process, const SystemProcessRules& rules) {
  if (process.pid < rules.minimumPid || rules.names.contains(process.name)) return true;
  return process.path && std::any_of(rules.pathPrefixes.begin(), rules.pathPrefixes.end(),
                                     [&](const std::string& prefix) { return process.path->starts_with(prefix); });
}

bool isUserProcess(const TrackedProcess& process, std::uint32_t currentUser, const SystemProcessRules& rules) {
  return process.uid == currentUser && !isSystemProcess(process, rules);
}

}  // namespace brindle
