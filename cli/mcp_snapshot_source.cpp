#include "cli/mcp_snapshot_source.h"

#include <cerrno>
#include <filesystem>

#include "base/file.h"
#include "base/json_reader.h"

namespace brindle {
namespace {

class RecordedSource : public SnapshotSource {
 public:
  RecordedSource(const RecordedSnapshot& recorded, std::vector<TrackedProcess> processes)
      : recorded_(recorded), processes_(std::move(processes)) {}

  Result<HostSnapshot> take(const ProtectionRules& rules) override {
    return snapshotOf(processes_, SnapshotContext{.now = recorded_.now,
                                                  .currentUser = recorded_.currentUser,
                                                  .rules = *recorded_.rules,
                                                  .protections = rules});
  }

 private:
  RecordedSnapshot recorded_;
  std::vector<TrackedProcess> processes_;
};

}  // namespace

Result<std::unique_ptr<SnapshotSource>> recordedSource(const RecordedSnapshot& recorded) {
  // The person named this file, so a link to it is followed, unlike in the shared folder.
  std::error_code unresolved;
  const std::filesystem::path resolved = std::filesystem::canonical(recorded.file, unresolved);
  if (unresolved) return fail(unresolved.value(), "read " + recorded.file);
  const Result<std::string> text = readFile(resolved.string(), kJsonByteLimit);
  if (!text) return tl::make_unexpected(text.error());
  const std::optional<JsonValue> document = parseJson(*text);
  auto processes = document ? decodeSnapshot(*document) : std::nullopt;
  if (!processes) return fail(EINVAL, "read " + recorded.file + " as a snapshot");
  return std::make_unique<RecordedSource>(recorded, *std::move(processes));
}

}  // namespace brindle
