#include "inventory/tcp_sockets.h"

#include <gtest/gtest.h>

#include <string>

namespace brindle {
namespace {

constexpr std::string_view kHead =
    "  sl  local_address rem_address   st tx_queue rx_queue tr tm->when retrnsmt   uid  timeout inode\n";

std::string line(std::string_view address, std::string_view state,
                 std::string_view tail = "1000        0 31337 1 0 100") {
  return "   0: " + std::string(address) + " 00000000:0000 " + std::string(state) + " 00000000:00000000 00:00000000 " +
         "00000000  " + std::string(tail) + "\n";
}

TEST(TcpTable, ReadsListeningAndEstablishedSockets) {
  const std::string text = std::string(kHead) + line("0100007F:1F90", "0A") + line("00000000:0BB8", "0A") +
                           line("0100007F:1F90", "01") + line("0100007F:1F91", "06");
  EXPECT_EQ(parseTcpTable(text), (std::vector<TcpSocket>{
                                     {TcpState::listening, 8080, true, 1000, 31337},
                                     {TcpState::listening, 3000, false, 1000, 31337},
                                     {TcpState::established, 8080, true, 1000, 31337},
                                 }));
}

TEST(TcpTable, KnowsWhichAddressesAreOfThisMachineOnly) {
  const auto loopback = [](std::string_view address) {
    const auto sockets = parseTcpTable(line(std::string(address) + ":0050", "0A"));
    return sockets.size() == 1 && sockets.front().loopback;
  };
  EXPECT_TRUE(loopback("0100007F"));
  EXPECT_TRUE(loopback("3500007F"));
  EXPECT_TRUE(loopback("00000000000000000000000001000000"));
  EXPECT_TRUE(loopback("0000000000000000FFFF00000100007F"));
  EXPECT_FALSE(loopback("00000000"));
  EXPECT_FALSE(loopback("0101A8C0"));
  EXPECT_FALSE(loopback("00000000000000000000000000000000"));
}

TEST(TcpTable, LinesThatAreNotTheKernelsArePassedOver) {
  const std::string good = line("0100007F:1F90", "0A");
  for (const std::string& bad : {std::string("\n"), std::string("x\n"), line("0100007F", "0A"),
                                 line("0100007:1F90", "0A"), line("0100007F:1F901", "0A"), line("0100007F:", "0A"),
                                 line("G100007F:1F90", "0A"), line("0100007F:1F90", "0A", "x 0 1"),
                                 line("0100007F:1F90", "0A", "1000 0 x"), line("0100007F:1F90", "0A", "1000")}) {
    EXPECT_EQ(parseTcpTable(bad + good).size(), 1U) << bad;
  }
}

TEST(TcpTable, EveryPrefixIsRead) {
  const std::string text = std::string(kHead) + line("0100007F:1F90", "0A");
  std::size_t most = 0;
  for (std::size_t length = 0; length <= text.size(); ++length) {
    most = std::max(most, parseTcpTable(std::string_view(text).substr(0, length)).size());
  }
  EXPECT_EQ(most, 1U);
}

TEST(TcpTable, TakesTheStatedNumberOfSockets) {
  std::string text;
  const std::string one = line("0100007F:1F90", "0A");
  for (std::size_t each = 0; each <= kSocketLimit; ++each) text += one;
  EXPECT_EQ(parseTcpTable(text).size(), kSocketLimit);
}

}  // namespace
}  // namespace brindle
