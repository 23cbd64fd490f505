#include "logic/events/agent_event_inbox.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "base/descriptor.h"
#include "base/file.h"
#include "base/json_reader.h"
#include "base/json_writer.h"
#include "base/lines.h"
#include "base/store_lock.h"

namespace brindle {
namespace {

// A writer that is killed inside its write leaves a piece of its line (the kernel may cut a write between two pages):
// the next line must not continue it, or it would be lost with it.
bool endsInsideALine(const std::string& path, off_t size) {
  if (size <= 0) return false;
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
  char last = '\n';
  return file && ::pread(file.get(), &last, 1, size - 1) == 1 && last != '\n';
}

// Afresh or at the end. Only the open may fail; a write that comes up short is taken back, so that the next line does
// not continue a torn one.
Outcome writeLine(const std::string& path, std::string_view line, bool afresh) {
  const int mode = O_WRONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | (afresh ? O_TRUNC : O_APPEND);
  const Descriptor file(::open(path.c_str(), mode, 0600));
  if (!file) return fail(kFileWriteNoPermission, "open " + path);
  const off_t before = ::lseek(file.get(), 0, SEEK_END);
  const std::string bytes = (endsInsideALine(path, before) ? "\n" : "") + std::string(line);
  const ssize_t written = ::write(file.get(), bytes.data(), bytes.size());
  const bool whole = written == static_cast<ssize_t>(bytes.size());
  if (!whole && before >= 0) {
    if (::ftruncate(file.get(), before) != 0) return {};  // nothing more can be done, and nothing is to be reported
  }
  return {};
}

}  // namespace

Outcome AgentEventInbox::append(const AgentEvent& event) const {
  const std::string line = agentEventLine(event);
  const Result<FileLock> lock = lockStore({directory_, kLockName});
  if (!lock) return tl::make_unexpected(lock.error());
  const bool afresh = fileSize(path()).value_or(0) > kSizeLimit;
  return writeLine(path(), line, afresh);
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
