#include "platform/proc_folder_linux.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/power_folders_linux.h"
#include "tests/platform/temporary_folder.h"

namespace brindle {
namespace {

using testing::TemporaryFolder;

constexpr const char* kNumbers = " S 1 7 7 0 -1 4194304 0 0 0 0 1 2 0 0 20 0 1 0 99 0 0\n";

TEST(ProcFolder, ListsTheNumericEntriesInOrder) {
  const TemporaryFolder folder;
  for (const char* name : {"12", "7", "self", "0", "-3", "99999999999", "1x"})
    folder.write(std::string(name) + "/stat", "");
  auto proc = ProcFolder::open(folder.path());
  ASSERT_TRUE(proc);
  EXPECT_EQ(proc->pids(10), (std::vector<std::int32_t>{7, 12}));
  EXPECT_EQ(proc->pids(1).size(), 1U);
}

TEST(ProcFolder, TakesNamesOfAnyBytes) {
  const TemporaryFolder folder;
  folder.write("7/stat", std::string("7 (a b) \n\xff)") + kNumbers);
  auto proc = ProcFolder::open(folder.path());
  const auto entry = proc->entry(7);
  ASSERT_TRUE(entry);
  EXPECT_EQ(entry->stat.name, "a b) \n\xff");
  EXPECT_EQ(entry->uid, ::geteuid());
}

TEST(ProcFolder, ProcessesThatVanishAreNone) {
  const TemporaryFolder folder;
  folder.write("7/stat", std::string("8 (a)") + kNumbers);
  folder.write("9/stat", "9 (a) S");
  auto proc = ProcFolder::open(folder.path());
  EXPECT_FALSE(proc->entry(6));
  EXPECT_FALSE(proc->entry(7)) << "the line is another process's";
  EXPECT_FALSE(proc->entry(9));
  EXPECT_FALSE(proc->read(6, "cmdline"));
  EXPECT_FALSE(proc->link(6, "exe"));
  EXPECT_FALSE(proc->sockets(6, 10));
  EXPECT_TRUE(proc->childrenOf(6, 10).empty());
}

TEST(ProcFolder, ReadsSocketsUpToTheLimit) {
  const TemporaryFolder folder;
  folder.write("7/fd/.keep", "");
  for (int each = 3; each < 6; ++each) {
    const std::string target = "socket:[" + std::to_string(each * 100) + "]";
    ASSERT_EQ(::symlink(target.c_str(), (folder.path() + "/7/fd/" + std::to_string(each)).c_str()), 0);
  }
  ASSERT_EQ(::symlink("/dev/null", (folder.path() + "/7/fd/0").c_str()), 0);
  auto proc = ProcFolder::open(folder.path());
  EXPECT_EQ(proc->sockets(7, 100)->size(), 3U);
  EXPECT_LE(proc->sockets(7, 2)->size(), 2U);
}

TEST(ProcFolder, ReadsBoundedFilesAndMarkedLinks) {
  const TemporaryFolder folder;
  folder.write("7/cmdline", std::string(ProcFolder::kFileLimit + 5, 'x'));
  ASSERT_EQ(::symlink("/srv/gone (deleted)", (folder.path() + "/7/cwd").c_str()), 0);
  auto proc = ProcFolder::open(folder.path());
  EXPECT_EQ(proc->read(7, "cmdline")->size(), ProcFolder::kFileLimit);
  EXPECT_EQ(proc->link(7, "cwd"), "/srv/gone");
}

TEST(ProcFolder, ChildrenOfAllThreadsAreFound) {
  const TemporaryFolder folder;
  folder.write("7/task/7/children", "10 11 ");
  folder.write("7/task/8/children", "12 ");
  auto proc = ProcFolder::open(folder.path());
  EXPECT_EQ(proc->childrenOf(7, 10), (std::vector<std::int32_t>{10, 11, 12}));
}

TEST(ProcFolder, AMissingRootIsAFailure) { EXPECT_FALSE(ProcFolder::open("/nonexistent/proc")); }

TEST(PowerFolders, ReadSuppliesInTheSystemsWords) {
  const TemporaryFolder folder;
  folder.write("power_supply/AC/type", "Mains\n");
  folder.write("power_supply/AC/online", "0\n");
  folder.write("power_supply/BAT0/type", "Battery\n");
  folder.write("power_supply/BAT0/status", "Discharging\n");
  folder.write("power_supply/BAT0/capacity", "42\n");
  folder.write("power_supply/BAT0/charge_now", "21\n");
  folder.write("power_supply/BAT0/charge_full", "50\n");
  folder.write("power_supply/BAT0/present", "x\n");
  const auto supplies = readSupplies(folder.path());
  ASSERT_EQ(supplies.size(), 2U);
  EXPECT_EQ(supplies[0], (SupplyReading{.type = "Mains", .online = 0}));
  EXPECT_EQ(
      supplies[1],
      (SupplyReading{.type = "Battery", .status = "Discharging", .capacity = 42, .energyNow = 21, .energyFull = 50}));
  EXPECT_EQ(powerStateOf(supplies), (PowerState{true, 42, false}));
}

TEST(PowerFolders, ReadThermalZonesThatAreOn) {
  const TemporaryFolder folder;
  folder.write("thermal/thermal_zone0/temp", "98000\n");
  folder.write("thermal/thermal_zone0/trip_point_0_type", "passive\n");
  folder.write("thermal/thermal_zone0/trip_point_0_temp", "80000\n");
  folder.write("thermal/thermal_zone0/trip_point_1_type", "critical\n");
  folder.write("thermal/thermal_zone0/trip_point_1_temp", "105000\n");
  folder.write("thermal/thermal_zone1/temp", "200\n");
  folder.write("thermal/thermal_zone1/mode", "disabled\n");
  folder.write("thermal/cooling_device0/temp", "1\n");
  const auto zones = readThermalZones(folder.path());
  EXPECT_EQ(zones, (std::vector<ThermalZoneReading>{{.temperature = 98'000, .passive = 80'000, .critical = 105'000}}));
  EXPECT_EQ(thermalLevelOf(zones), ThermalLevel::serious);
}

TEST(PowerFolders, AMachineWithoutEitherHasNone) {
  const TemporaryFolder folder;
  EXPECT_TRUE(readSupplies(folder.path()).empty());
  EXPECT_TRUE(readThermalZones(folder.path()).empty());
}

}  // namespace
}  // namespace brindle
