#include "platform/ownership_store.h"

#include <algorithm>
#include <cerrno>
#include <set>
#include <string_view>
#include <utility>

#include "base/file.h"
#include "base/file_lock.h"
#include "base/line_file.h"

namespace brindle {
namespace {

/// What tells two records apart; the same process may be tied to a second agent later.
using Key = std::tuple<std::string, std::int32_t, std::int64_t, std::int32_t, std::int64_t>;

Key keyOf(const OwnershipRecord& record) {
  return {record.boot, record.pid, record.startTime, record.agentPid, record.agentStartTime};
}

}  // namespace

OwnershipStore::OwnershipStore(std::string folder)
    : folder_(std::move(folder)), path_(folder_ + "/ownership.jsonl"), lockPath_(folder_ + "/ownership.lock") {}

std::vector<OwnershipRecord> OwnershipStore::readAll() const {
  std::vector<OwnershipRecord> records;
  // A file that somebody else has made larger than ours ever gets is read as empty and replaced when it is cleaned.
  const auto text = readFile(path_, kOwnershipFileLimit + kOwnershipLineLimit);
  std::string_view rest = text ? std::string_view(*text) : std::string_view();
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    if (auto record = ownershipFromLine(rest.substr(0, end))) records.push_back(std::move(*record));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return records;
}

std::vector<OwnershipRecord> OwnershipStore::records(const std::string& boot) const {
  std::vector<OwnershipRecord> records = readAll();
  std::erase_if(records, [&](const OwnershipRecord& record) { return record.boot != boot; });
  return records;
}

Outcome OwnershipStore::add(const std::vector<OwnershipRecord>& records) const {
  if (records.empty()) return {};
  if (auto made = ensureFolder(folder_); !made) return made;
  const auto lock = FileLock::acquire(lockPath_);
  if (!lock) return tl::make_unexpected(lock.error());
  std::set<Key> known;
  for (const OwnershipRecord& record : readAll()) known.insert(keyOf(record));
  const std::size_t size = fileSize(path_).value_or(0);
  std::string lines;
  bool isFull = false;
  for (const OwnershipRecord& record : records) {
    if (!known.insert(keyOf(record)).second) continue;
    const std::string line = ownershipLine(record);
    isFull = size + lines.size() + line.size() > kOwnershipFileLimit;
    if (isFull) break;
    lines += line;
  }
  if (!lines.empty()) {
    if (auto added = appendLines(path_, lines); !added) return added;
  }
  if (isFull) return fail(EFBIG, "add to " + path_);
  return {};
}

Outcome OwnershipStore::clean(const std::string& boot, const IsAlive& isAlive, std::size_t fromSize) const {
  const auto size = fileSize(path_);
  if (!size || *size < fromSize) return {};
  const auto lock = FileLock::acquire(lockPath_);
  if (!lock) return tl::make_unexpected(lock.error());
  std::string kept;
  for (const OwnershipRecord& record : readAll()) {
    if (record.boot == boot && isAlive(record.pid, record.startTime)) kept += ownershipLine(record);
  }
  return replaceFile(path_, kept);
}

}  // namespace brindle
