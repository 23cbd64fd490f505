#include "inventory/socket_owners.h"

#include <gtest/gtest.h>

namespace brindle {
namespace {

const std::vector<TcpSocket> kSockets{
    {TcpState::listening, 3000, true, 1000, 11},   {TcpState::listening, 80, false, 0, 12},
    {TcpState::listening, 3000, true, 1000, 13},   {TcpState::established, 3000, true, 1000, 14},
    {TcpState::established, 3000, true, 1000, 15}, {TcpState::listening, 90, true, 1001, 0}};

TEST(SocketOwners, TheFirstThatHoldsASharedSocketOwnsIt) {
  SocketOwners owners(kSockets);
  ProcessFacts parent;
  ProcessFacts child;
  owners.give({11, 12, 99}, parent);
  owners.give({11, 12}, child);
  EXPECT_EQ(parent.ports, (std::vector<int>{80, 3000}));
  EXPECT_TRUE(child.ports.empty());
  EXPECT_EQ(owners.left(), 1U);
}

TEST(SocketOwners, APortOfBothFamiliesCountsOnce) {
  SocketOwners owners(kSockets);
  ProcessFacts facts;
  owners.give({11, 13}, facts);
  EXPECT_EQ(facts.ports, std::vector<int>{3000});
}

TEST(SocketOwners, OneAddressForOthersMakesTheProcessReachable) {
  SocketOwners owners(kSockets);
  ProcessFacts local;
  ProcessFacts open;
  owners.give({11}, local);
  owners.give({12, 13}, open);
  EXPECT_FALSE(local.reachable);
  EXPECT_TRUE(open.reachable);
  EXPECT_EQ(owners.left(), 0U);
}

TEST(SocketOwners, EstablishedSocketsAndThoseThatNobodyHoldsHaveNoOwner) {
  SocketOwners owners(kSockets);
  ProcessFacts facts;
  owners.give({14, 15, 0}, facts);
  EXPECT_TRUE(facts.ports.empty());
  EXPECT_TRUE(owners.isOfUser(1000));
  EXPECT_FALSE(owners.isOfUser(1001));
}

TEST(CountClients, CountsConnectionsToAProcesssOwnPorts) {
  std::vector<ProcessFacts> processes{{.pid = 1, .ports = {80, 3000}}, {.pid = 2, .ports = {80}}, {.pid = 3}};
  countClients(kSockets, processes);
  EXPECT_EQ(processes[0].clients, 2);
  EXPECT_EQ(processes[1].clients, 0);
  EXPECT_EQ(processes[2].clients, 0);
}

}  // namespace
}  // namespace brindle
