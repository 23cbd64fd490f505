#include "logic/events/agent_notify_rules.h"

#include "base/json_record.h"

namespace brindle {

JsonObject encode(const AgentNotifyRules& rules) {
  JsonObject object;
  object.append("finished", rules.finished);
  object.append("needsApproval", rules.needsApproval);
  object.append("onlyWhenAway", rules.onlyWhenAway);
  object.append("approvalDelay", rules.approvalDelay.count());
  object.append("idleGuess", rules.idleGuess);
  object.append("idleAfter", rules.idleAfter.count());
  return object;
}

AgentNotifyRules decodeAgentNotifyRules(const JsonObject& object) {
  const AgentNotifyRules defaults;
  AgentNotifyRules rules;
  rules.finished = booleanMember(object, "finished").value_or(defaults.finished);
  rules.needsApproval = booleanMember(object, "needsApproval").value_or(defaults.needsApproval);
  rules.onlyWhenAway = booleanMember(object, "onlyWhenAway").value_or(defaults.onlyWhenAway);
  rules.approvalDelay = Seconds{realMember(object, "approvalDelay").value_or(defaults.approvalDelay.count())};
  rules.idleGuess = booleanMember(object, "idleGuess").value_or(defaults.idleGuess);
  rules.idleAfter = Seconds{realMember(object, "idleAfter").value_or(defaults.idleAfter.count())};
  return rules;
}

}  // namespace brindle
