#include "logic/mcp/mcp_quit_inbox.h"

#include <algorithm>
#include <cerrno>

#include "base/file.h"
#include "base/json_reader.h"
#include "base/json_writer.h"
#include "base/store_lock.h"

namespace brindle {
namespace {

bool isPending(const MCPQuitRequest& request) { return request.status == MCPQuitInbox::kPendingStatus; }

bool haveOneTarget(const MCPQuitRequest& a, const MCPQuitRequest& b) {
  return a.kind == b.kind && a.pid == b.pid && a.port == b.port && a.sessionPID == b.sessionPID;
}

}  // namespace

Outcome MCPQuitInbox::add(const MCPQuitRequest& request) const {
  const Result<FileLock> lock = lockStore({directory_, kLockName});
  if (!lock) return tl::make_unexpected(lock.error());
  std::vector<MCPQuitRequest> requests = read();
  requests.push_back(request);
  return write(requests);
}

Result<std::string> MCPQuitInbox::addOnce(const MCPQuitRequest& request) const {
  const Result<FileLock> lock = lockStore({directory_, kLockName});
  if (!lock) return tl::make_unexpected(lock.error());
  std::vector<MCPQuitRequest> requests = read();
  std::size_t waiting = 0;
  for (const MCPQuitRequest& known : requests) {
    if (!isPending(known)) continue;
    if (haveOneTarget(known, request)) return known.id;
    ++waiting;
  }
  if (waiting >= kPendingLimit) return fail(EAGAIN, "file a quit request while too many wait for an answer");
  std::erase_if(requests, [&](const MCPQuitRequest& known) {
    return !isPending(known) && (request.time - known.time).count() >= kKeptForSeconds;
  });
  requests.push_back(request);
  if (const Outcome written = write(requests); !written) return tl::make_unexpected(written.error());
  return request.id;
}

std::vector<MCPQuitRequest> MCPQuitInbox::pending() const {
  std::vector<MCPQuitRequest> requests = read();
  std::erase_if(requests, [](const MCPQuitRequest& request) { return !isPending(request); });
  return requests;
}

Outcome MCPQuitInbox::setStatus(StatusChange change) const {
  const Result<FileLock> lock = lockStore({directory_, kLockName});
  if (!lock) return tl::make_unexpected(lock.error());
  std::vector<MCPQuitRequest> requests = read();
  const auto found = std::find_if(requests.begin(), requests.end(),
                                  [&](const MCPQuitRequest& request) { return request.id == change.id; });
  if (found == requests.end()) return {};
  found->status = change.status;
  return write(requests);
}

std::string MCPQuitInbox::path() const { return directory_ + "/" + std::string(kFileName); }

std::vector<MCPQuitRequest> MCPQuitInbox::read() const {
  const Result<std::string> text = readFile(path(), kByteLimit);
  const std::optional<JsonValue> document = text ? parseJson(*text) : std::nullopt;
  const JsonArray* array = document ? document->array() : nullptr;
  if (array == nullptr) return {};
  std::vector<MCPQuitRequest> requests;
  requests.reserve(array->size());
  for (const JsonValue& element : *array) {
    const JsonObject* object = element.object();
    auto request = object == nullptr ? std::nullopt : decodeMCPQuitRequest(*object);
    if (!request) return {};  // one array, one document: it decodes as a whole or not at all
    requests.push_back(*std::move(request));
  }
  return requests;
}

Outcome MCPQuitInbox::write(const std::vector<MCPQuitRequest>& requests) const {
  JsonArray array;
  array.reserve(requests.size());
  for (const MCPQuitRequest& request : requests) array.push_back(encode(request));
  return replaceFile(path(), writeJson(JsonValue(std::move(array)), JsonStyle{.pretty = true, .sortedKeys = true}));
}

}  // namespace brindle
