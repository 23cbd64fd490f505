#include "logic/events/agent_event_inbox.h"

#include "base/file.h"
#include "base/json_reader.h"
#include "base/json_writer.h"
#include "base/line_file.h"
#include "base/lines.h"
#include "base/store_lock.h"

namespace brindle {

Outcome AgentEventInbox::append(const AgentEvent& event) const {
  const std::string line = agentEventLine(event);
  const Result<FileLock> lock = lockStore({directory_, kLockName});
  if (!lock) return tl::make_unexpected(lock.error());
  const bool afresh = fileSize(path()).value_or(0) > kSizeLimit;
  Result<LineFile> file = LineFile::open(path(), afresh ? LineFile::Start::afresh : LineFile::Start::atEnd);
  if (!file) return fail(kFileWriteNoPermission, file.error().doing);
  (void)file->append(line).has_value();  // a full disk is no failure of the agent that the hook works for
  return {};
}

bool AgentEventInbox::hasPending() const { return fileSize(path()).value_or(0) > 0; }

std::vector<AgentEvent> AgentEventInbox::drain(Date now) const {
  std::vector<AgentEvent> events = readAgentEventLines(takeAll());
  std::erase_if(events, [&](const AgentEvent& event) { return !((now - event.time).count() < kFreshnessSeconds); });
  return events;
}

std::string AgentEventInbox::path() const { return directory_ + "/" + std::string(kFileName); }

// The lock is let go before anything is decoded: hook commands wait for it.
std::string AgentEventInbox::takeAll() const {
  const Result<FileLock> lock = lockStore({directory_, kLockName});
  if (!lock) return {};
  Result<std::string> content = readFile(path(), kReadLimit);
  if (!content || content->empty()) return {};
  if (const Outcome emptied = replaceFile(path(), {}); !emptied) return {};
  return *std::move(content);
}

std::string agentEventLine(const AgentEvent& event) { return writeJson(encode(event, DateForm::iso8601)) + "\n"; }

std::vector<AgentEvent> readAgentEventLines(std::string_view text) {
  std::vector<AgentEvent> events;
  for (const std::string_view line : nonEmptyLines(text)) {
    const std::optional<JsonValue> value = parseJson(line);
    const JsonObject* object = value ? value->object() : nullptr;
    if (object == nullptr) continue;
    if (auto event = decodeAgentEvent(*object, DateForm::iso8601)) events.push_back(*std::move(event));
  }
  return events;
}

}  // namespace brindle
