#include "logic/mcp/safety_gate.h"

namespace brindle::SafetyGate {
namespace {

MCPSafetyVerdict leaveAlone(std::string reason, const std::optional<std::string>& name) {
  return {.verdict = std::string(kLeaveAlone), .reason = std::move(reason), .name = name};
}

bool isProtected(const Input& input) {
  if (!input.protectedReason) return false;
  return !input.isSession || input.protectedReason->find(kAgentsLabel) == std::string::npos;
}

}  // namespace

MCPSafetyVerdict decide(const Input& input) {
  if (!input.found) return leaveAlone("Nothing of yours matches.", std::nullopt);
  if (input.otherUser) return leaveAlone("Owned by another user.", input.name);
  if (input.system) return leaveAlone("System process. Brindle leaves it alone.", input.name);
  if (input.brindle) return leaveAlone("Brindle itself.", input.name);
  if (isProtected(input)) return leaveAlone(*input.protectedReason + ". Brindle will not stop it.", input.name);
  return {.verdict = std::string(kAskFirst),
          .reason = input.isSession ? "This is a live agent session. Brindle will ask you before quitting it and "
                                      "everything it started."
                                    : "Brindle will ask you in the app before it stops anything.",
          .name = input.name};
}

}  // namespace brindle::SafetyGate
