// The identity of one client connection, whatever the platform's own object for it is.
//
// Made by the service, which never gives a number twice; kept by Helper.
#pragma once

#include <compare>
#include <cstdint>

namespace brindle {

struct ConnectionId {
  std::uint64_t value = 0;

  auto operator<=>(const ConnectionId&) const = default;
};

}  // namespace brindle
