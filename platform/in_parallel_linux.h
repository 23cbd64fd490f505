// Looks at many processes with two threads, where that pays.
//
// Used by the Linux listing: nearly all of its time is the kernel's, which answers two threads at once.
#pragma once

#include <cstddef>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/proc_folder_linux.h"

namespace brindle {

/// Fewer than this are quicker read by one thread.
inline constexpr std::size_t kWorthAThread = 64;

/// A thread that runs `work`; none that can be joined where the system refuses one more, as it does when a user has as
/// many processes as the limits allow. That is when a listing is wanted most.
template <typename Work>
std::thread threadIfAllowed(Work&& work) {
  try {
    return std::thread(std::forward<Work>(work));
  } catch (const std::system_error&) {
    return {};
  }
}

/// Calls `work` once with each number below `count`, and with a folder that belongs to the calling thread. The calls
/// must not touch the same data. Returns when all are done.
template <typename Work>
void inParallel(ProcFolder& proc, std::size_t count, Work&& work) {
  auto second = count < kWorthAThread ? Result<ProcFolder>(fail(0, "")) : proc.again();
  const std::size_t half = second ? count / 2 : count;
  std::thread helper;
  if (second) {
    helper = threadIfAllowed([&] {
      for (std::size_t at = half; at < count; ++at) work(*second, at);
    });
  }
  const std::size_t own = helper.joinable() ? half : count;
  for (std::size_t at = 0; at < own; ++at) work(proc, at);
  if (helper.joinable()) helper.join();
}

}  // namespace brindle
