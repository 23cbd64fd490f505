#include "cli/mcp_service.h"

#include <cerrno>
#include <cmath>

#include "base/json_record.h"
#include "base/text.h"
#include "base/uuid.h"
#include "cli/agent_text.h"
#include "inventory/protections.h"
#include "logic/mcp/mcp_heartbeat.h"
#include "logic/mcp/mcp_quit_inbox.h"
#include "logic/mcp/mcp_request_log.h"
#include "logic/reports/cli_reports.h"
#include "platform/settings.h"

namespace brindle {
namespace {

constexpr std::string_view kOffMessage = "Brindle's MCP server is off. Turn it on in Brindle's settings.";
constexpr std::string_view kEnabledKey = "mcpEnabled";

// What a request would stop: the session when one is named, else the process, else whoever listens on the port. The
// verdict must be about the same.
SafetyTarget decisiveTarget(const MCPTarget& target) {
  if (target.sessionPid) return {.sessionPid = target.sessionPid};
  if (target.pid) return {.pid = target.pid};
  return {.port = target.port};
}

}  // namespace

MCPService::MCPService(Parts parts) : parts_(std::move(parts)) {
  server_.offMessage = kOffMessage;
  server_.status = [this] {
    return report(
        [](const HostSnapshot& snapshot) { return CLIReports::jsonText(CLIReports::status(snapshot.report())); });
  };
  server_.ports = [this] {
    return report(
        [](const HostSnapshot& snapshot) { return CLIReports::jsonText(CLIReports::ports(snapshot.report())); });
  };
  server_.agents = [this]() -> Result<std::string> {
    const auto taken = look();
    if (!taken) return tl::make_unexpected(taken.error());
    const HostSnapshot& snapshot = (*taken)->cleaned;
    return CLIReports::jsonText(CLIReports::agents(snapshot.report(), snapshot.now));
  };
  server_.safety = [this](const MCPTarget& target) { return safety(target); };
  server_.requestQuit = [this](const MCPQuitCall& call) { return fileRequest(call); };
  server_.log = [this](const MCPLogEntry& entry) { log(entry); };
}

std::optional<std::string> MCPService::answer(const JsonObject& message, Date now) {
  now_ = now;
  if (stringMember(message, "method") == "tools/call") prepareToolCall();
  return server_.handle(message, now);
}

void MCPService::prepareToolCall() {
  const Settings settings = parts_.settingsFile ? readSettings(*parts_.settingsFile) : Settings();
  if (!settings.problem.empty()) remark(settings.problem);
  server_.enabled = booleanMember(settings.document, kEnabledKey).value_or(true);
  ProtectionRules rules = protectionRulesFrom(JsonValue(settings.document));
  if (rules != rules_) look_.reset();
  rules_ = std::move(rules);
  server_.appRunning =
      parts_.stateFolder && MCPHeartbeat::isFresh(*parts_.stateFolder, now_, Seconds{MCPHeartbeat::kMaximumAgeSeconds});
}

Result<const MCPService::Look*> MCPService::look() {
  if (look_ && std::abs((now_ - look_->taken).count()) < kSnapshotAgeSeconds) return &*look_;
  Result<HostSnapshot> taken = parts_.source.take(rules_);
  if (!taken) return tl::make_unexpected(taken.error());
  HostSnapshot cleaned = *taken;
  cleanForAgents(cleaned);
  look_ = Look{*std::move(taken), std::move(cleaned), now_};
  return &*look_;
}

std::string MCPService::report(const std::function<std::string(const HostSnapshot&)>& text) {
  const auto taken = look();
  if (!taken) return "Brindle could not look at the processes: " + taken.error().message() + ".";
  return text((*taken)->cleaned);
}

MCPSafetyVerdict MCPService::safety(const MCPTarget& target) {
  const auto taken = look();
  if (!taken) {
    return {std::string(SafetyGate::kLeaveAlone), "Brindle could not look at the processes.", std::nullopt};
  }
  MCPSafetyVerdict verdict = SafetyGate::decide(safetyInput((*taken)->exact, decisiveTarget(target)));
  verdict.reason = agentName(verdict.reason);
  if (verdict.name) verdict.name = agentName(*verdict.name);
  return verdict;
}

Result<std::string> MCPService::fileRequest(const MCPQuitCall& call) {
  if (!parts_.stateFolder) return fail(ENOENT, "find the folder for requests");
  MCPQuitRequest request{.id = randomUuidText(),
                         .time = now_,
                         .kind = call.kind,
                         .pid = call.target.pid,
                         .port = call.target.port,
                         .sessionPID = call.target.sessionPid,
                         .status = std::string(MCPQuitInbox::kPendingStatus)};
  if (call.note) request.note = std::string(firstCharacters(visibleText(*call.note), kNoteLimit));
  return MCPQuitInbox(*parts_.stateFolder).addOnce(request);
}

void MCPService::log(const MCPLogEntry& entry) {
  if (!parts_.stateFolder) return;
  MCPLogEntry bounded = entry;
  bounded.tool = firstCharacters(entry.tool, kLoggedToolLimit);
  const Outcome written = MCPRequestLog(*parts_.stateFolder).append(bounded);
  if (!written) remark("cannot record the call: " + written.error().message());
}

void MCPService::remark(const std::string& line) {
  if (line == lastRemark_) return;
  lastRemark_ = line;
  parts_.remark(line);
}

}  // namespace brindle
