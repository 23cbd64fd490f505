// The processes of this machine, as its kernel shows them.
//
// Used by the host's snapshot taker and by the hook commands. Reads as little as the question needs: the kernel's
// table for all processes, the rest for those of interest only. A process may vanish at any step; it is then left
// out. Blocks for milliseconds; any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/result.h"
#include "inventory/process_facts.h"

namespace brindle {

/// The most processes of one listing; a machine with more is not listed completely.
inline constexpr std::size_t kProcessLimit = 65536;

enum class ListingDetail {
  /// Everything of every process of the current user, and the listeners of all.
  everything,
  /// Programs and folders of processes that listen, and their ancestors' programs; for the others pid, parent, user,
  /// name and start. No memory.
  listeners,
  /// Everything of agents, what is below them, and what has been adopted by the system and shows a trace of one; for
  /// the others what is needed to recognise an agent.
  agents,
};

struct ProcessListing {
  /// In ascending order of start, so that parents come before their children; kernel threads and processes that have
  /// ended but not been waited for are left out.
  std::vector<ProcessFacts> processes;
  /// Listening sockets whose process was not found: it belongs to another user, or hides. 0 where only the agents and
  /// what is below them were looked at, and on macOS, which tells a user about the sockets of own processes only.
  int unownedListeners = 0;
};

struct ListingQuestion {
  std::uint32_t currentUser = 0;
  ListingDetail detail = ListingDetail::everything;
  /// Pids and start stamps of processes that records tie to an agent; they are of interest like agents.
  std::set<std::pair<std::int32_t, std::int64_t>> recorded = {};
};

/// Fails with errno when the process table cannot be opened. May use a second thread for its length.
[[nodiscard]] Result<ProcessListing> listProcesses(const ListingQuestion& question);

/// A process, its parent, its parent's parent and so on, at most 64, with names, paths, arguments and start stamps
/// only. Empty when there is no such process.
[[nodiscard]] std::vector<ProcessFacts> processChain(std::int32_t pid);

/// What hangs below a process now, breadth first, at most 512 processes, with pid, parent and start stamp only.
[[nodiscard]] std::vector<ProcessFacts> processesBelow(std::int32_t pid);

/// The start stamp of a process; none when there is no such process or it has ended and waits for its parent.
[[nodiscard]] std::optional<std::int64_t> startStampOf(std::int32_t pid);

/// The TCP ports that somebody listens on now.
[[nodiscard]] std::set<int> listeningPorts();

/// Whether all processes of the machine are shown here; not in a container or sandbox with pids of its own.
[[nodiscard]] bool showsWholeMachine();

/// The kernel's id of this boot; empty when it tells none.
[[nodiscard]] std::string bootId();

}  // namespace brindle
