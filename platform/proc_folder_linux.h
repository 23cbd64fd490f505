// Bounded reads below /proc.
//
// Used by the Linux process source; tests point it at a folder of their own. Not for several threads at once: it
// keeps one buffer.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/descriptor.h"
#include "base/result.h"
#include "inventory/proc_stat.h"
#include "inventory/process_facts.h"

namespace brindle {

class ProcFolder {
 public:
  /// Fails with errno when the folder cannot be opened.
  [[nodiscard]] static Result<ProcFolder> open(const std::string& root = "/proc");
  /// The same folder with a buffer of its own, for another thread.
  [[nodiscard]] Result<ProcFolder> again() const;

  /// The numeric entries, ascending, at most `limit`.
  [[nodiscard]] std::vector<std::int32_t> pids(std::size_t limit) const;

  /// The kernel's line of a process with the owner of the process; none when it has vanished.
  struct Entry {
    ProcStat stat;
    std::uint32_t uid = 0;
  };
  [[nodiscard]] std::optional<Entry> entry(std::int32_t pid);

  /// The first bytes of a file of the process, kFileLimit at most; none when it cannot be read. The view is valid
  /// until the next call.
  static constexpr std::size_t kFileLimit = std::size_t{256} << 10;
  [[nodiscard]] std::optional<std::string_view> read(std::int32_t pid, const char* file);
  /// Where a link of the process points; none when it cannot be read or the target has more than 4095 bytes.
  [[nodiscard]] std::optional<std::string> link(std::int32_t pid, const char* file) const;

  /// The inodes of the sockets that the process holds, looking at `limit` descriptors at most; none when its
  /// descriptors may not be read.
  [[nodiscard]] std::optional<std::vector<std::uint64_t>> sockets(std::int32_t pid, std::size_t limit) const;

  /// The children of the first `threadLimit` threads of the process.
  [[nodiscard]] std::vector<std::int32_t> childrenOf(std::int32_t pid, std::size_t threadLimit);

  [[nodiscard]] int descriptor() const { return root_.get(); }

 private:
  explicit ProcFolder(Descriptor root) : root_(std::move(root)), buffer_(kFileLimit, '\0') {}
  Descriptor root_;
  std::string buffer_;
};

}  // namespace brindle
