// A private bus for every test; all its connections are this process's, on one loop.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <optional>

#include "system/bus_connection_linux.h"
#include "system/child_process.h"

namespace brindle {

struct PrivateBus : ::testing::Test {
  PrivateBus() {
    std::string pattern = ::testing::TempDir() + "bus-XXXXXX";
    folder = mkdtemp(pattern.data());
    std::ofstream(folder / "bus.conf") << "<busconfig><type>session</type><listen>unix:path="
                                       << (folder / "bus").string()
                                       << "</listen><policy context='default'><allow send_destination='*'/>"
                                          "<allow receive_sender='*'/><allow own='*'/></policy></busconfig>";
    // It ends with this program, also when that crashes.
    auto start = ChildProcess::start({.program = "setpriv",
                                      .arguments = {"--pdeathsig", "KILL", "dbus-daemon", "--nofork", "--nopidfile",
                                                    "--nosyslog", "--config-file=" + (folder / "bus.conf").string(),
                                                    "--print-address=" + std::to_string(report.writing())},
                                      .searchesPath = true,
                                      .nullStreams = true});
    EXPECT_TRUE(start);
    if (start) daemon = *start;
    EXPECT_TRUE(report.arrived());
    setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + (folder / "bus").string()).c_str(), 1);
  }
  ~PrivateBus() override {
    if (daemon) {
      kill(daemon->pid(), SIGKILL);
      EXPECT_TRUE(daemon->wait());
    }
    unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
    std::filesystem::remove_all(folder);
  }

  /// A pipe into which the bus writes its address as soon as it listens.
  class Report {
   public:
    Report() { EXPECT_EQ(pipe(ends_), 0); }
    ~Report() {
      close(ends_[0]);
      close(ends_[1]);
    }
    Report(const Report&) = delete;
    Report& operator=(const Report&) = delete;
    [[nodiscard]] int writing() const { return ends_[1]; }
    [[nodiscard]] bool arrived() const {
      char byte = 0;
      return read(ends_[0], &byte, 1) == 1;
    }

   private:
    int ends_[2] = {-1, -1};
  };

  BusConnection connect() {
    auto bus = BusConnection::openSystem().value();
    EXPECT_TRUE(bus.attach(loop));
    return bus;
  }
  std::filesystem::path folder;
  Report report;
  std::optional<ChildProcess> daemon;
  EventLoop loop = EventLoop::create().value();
};

}  // namespace brindle
