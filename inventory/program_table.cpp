#include "inventory/program_table.h"

#include <array>

namespace brindle {
namespace {

using Names = std::string_view;
constexpr std::span<const Names> kNone{};

constexpr auto kIdes = std::to_array<Names>({
    "code",        "code-insiders", "cursor",     "Cursor",   "windsurf",   "Windsurf", "codium",   "vscodium",
    "VSCodium",    "zed",           "zed-editor", "nvim",     "emacs",      "Emacs",    "Xcode",    "idea",
    "idea64",      "pycharm",       "pycharm64",  "webstorm", "webstorm64", "goland",   "goland64", "clion",
    "clion64",     "rubymine",      "rubymine64", "phpstorm", "phpstorm64", "rider",    "rider64",  "rustrover",
    "rustrover64", "datagrip",      "datagrip64", "studio",   "studio64",
});
constexpr auto kIdeFolders = std::to_array<Names>({
    "Visual Studio Code.app",
    "Cursor.app",
    "Windsurf.app",
    "VSCodium.app",
    "Zed.app",
    "Xcode.app",
    "IntelliJ IDEA.app",
    "PyCharm.app",
    "WebStorm.app",
    "GoLand.app",
    "CLion.app",
    "RubyMine.app",
    "PhpStorm.app",
    "Rider.app",
    "RustRover.app",
    "DataGrip.app",
    "Android Studio.app",
});

constexpr auto kTerminals = std::to_array<Names>({
    "gnome-terminal-server",
    "gnome-terminal",
    "ptyxis",
    "ptyxis-agent",
    "konsole",
    "kitty",
    "alacritty",
    "wezterm-gui",
    "ghostty",
    "foot",
    "footclient",
    "xterm",
    "tmux",
    "screen",
    "SCREEN",
    "zellij",
    "Terminal",
    "iTerm2",
    "WarpTerminal",
    "warp-terminal",
    "Hyper",
    "hyper",
    "terminator",
    "tilix",
    "xfce4-terminal",
});

constexpr auto kDatabases = std::to_array<Names>({
    "postgres",
    "postmaster",
    "mysqld",
    "mariadbd",
    "redis-server",
    "valkey-server",
    "mongod",
    "mongos",
    "clickhouse-server",
    "cockroach",
    "memcached",
    "etcd",
    "influxd",
    "neo4j",
    "beam.smp",
    "qdrant",
    "minio",
});

constexpr auto kContainers = std::to_array<Names>({
    "dockerd",
    "docker-proxy",
    "containerd",
    "containerd-shim",
    "containerd-shim-runc-v2",
    "com.docker.backend",
    "com.docker.build",
    "vpnkit",
    "podman",
    "conmon",
    "rootlessport",
    "rootlesskit",
    "slirp4netns",
    "pasta",
    "qemu-system-x86_64",
    "colima",
    "limactl",
    "OrbStack",
    "lxc-start",
});
constexpr auto kContainerFolders = std::to_array<Names>({"Docker.app", "OrbStack.app"});

constexpr auto kDaemons = std::to_array<Names>({
    "ssh-agent",
    "gpg-agent",
    "scdaemon",
    "keyboxd",
    "dirmngr",
    "watchman",
    "sccache",
    "ollama",
    "mosh-server",
    "sshd",
    "adb",
    "distccd",
    "ccache",
    "buildkitd",
    "colima",
    "syncthing",
    "dbus-daemon",
    "dbus-broker",
});
constexpr auto kDaemonScripts = std::to_array<Names>({
    "org.gradle.launcher.daemon.bootstrap.GradleDaemon",
    "org.jetbrains.kotlin.daemon.KotlinCompileDaemon",
    "A-server.jar",  // Bazel's server
    "nx/src/daemon/server/start.js",
});
constexpr auto kDaemonCommands = std::to_array<DaemonCommand>({{"turbo", "daemon"}, {"nx", "daemon"}});

constexpr auto kSystemManagers =
    std::to_array<Names>({"systemd", "init", "launchd", "tini", "dumb-init", "docker-init", "catatonit", "runsvdir"});

}  // namespace

std::span<const std::string_view> programsOf(ProgramClass programClass) {
  switch (programClass) {
    case ProgramClass::ide:
      return kIdes;
    case ProgramClass::terminal:
      return kTerminals;
    case ProgramClass::database:
      return kDatabases;
    case ProgramClass::container:
      return kContainers;
    case ProgramClass::daemon:
      return kDaemons;
    case ProgramClass::systemManager:
      return kSystemManagers;
  }
  return kNone;
}

std::span<const std::string_view> foldersOf(ProgramClass programClass) {
  switch (programClass) {
    case ProgramClass::ide:
      return kIdeFolders;
    case ProgramClass::container:
      return kContainerFolders;
    case ProgramClass::terminal:
    case ProgramClass::database:
    case ProgramClass::daemon:
    case ProgramClass::systemManager:
      return kNone;
  }
  return kNone;
}

std::span<const std::string_view> daemonScripts() { return kDaemonScripts; }

std::span<const DaemonCommand> daemonCommands() { return kDaemonCommands; }

}  // namespace brindle
