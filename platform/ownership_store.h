// The file of ownership records in the state folder, shared by hook commands and snapshot takers.
//
// One record a line, appended under a lock beside the file; rewritten in one step when it is cleaned. Records of
// another boot, of processes that have ended, and damaged lines mean nothing and go with the next cleaning. Bounded by
// kOwnershipFileLimit: beyond it nothing is added until it has been cleaned. Any thread, any number of processes.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "base/result.h"
#include "inventory/ownership_record.h"

namespace brindle {

/// The most bytes that the file may grow to, and the size from which on it is worth cleaning.
inline constexpr std::size_t kOwnershipFileLimit = std::size_t{512} << 10;
inline constexpr std::size_t kOwnershipCleanSize = std::size_t{32} << 10;

class OwnershipStore {
 public:
  /// The files "ownership.jsonl" and "ownership.lock" in `folder`, which is created by the first write.
  explicit OwnershipStore(std::string folder);

  /// The records of the boot in the order in which they were written; none when the file cannot be read.
  [[nodiscard]] std::vector<OwnershipRecord> records(const std::string& boot) const;

  /// Adds those of `records` that the file does not hold yet. EFBIG when the file is full; the first ones that
  /// fitted into it have been added. Fails as FileLock, ensureFolder and appendLines do.
  Outcome add(const std::vector<OwnershipRecord>& records) const;

  /// Whether the process of this pid and start stamp runs.
  using IsAlive = std::function<bool(std::int32_t pid, std::int64_t startTime)>;
  /// Keeps what is of the boot and whose process is alive, when the file has at least `fromSize` bytes. A failure
  /// leaves the file as it was.
  Outcome clean(const std::string& boot, const IsAlive& isAlive, std::size_t fromSize = kOwnershipCleanSize) const;

  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  [[nodiscard]] std::vector<OwnershipRecord> readAll() const;

  std::string folder_;
  std::string path_;
  std::string lockPath_;
};

}  // namespace brindle
