// Settings and stored records: any object decodes or is refused, decoded rules keep their bounds, and everything that
// decodes survives being written and read back.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "base/json_reader.h"
#include "base/json_writer.h"
#include "logic/events/agent_notify_rules.h"
#include "logic/plan/plan_account.h"
#include "logic/plan/plan_alert_tracker.h"
#include "logic/plan/plan_sample.h"
#include "logic/power/keep_awake_rules.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

/// The object that a file holding `object` would give.
brindle::JsonObject reread(const brindle::JsonObject& object) {
  const auto document = brindle::parseJson(writeJson(object));
  require(document && document->object() != nullptr);
  return *document->object();
}

void checkRules(const brindle::JsonObject& object) {
  const auto rules = brindle::decodeKeepAwakeRules(object);
  require(rules.batteryFloor >= 5 && rules.batteryFloor <= 90);
  require(rules.maxDuration >= brindle::Seconds{60} && rules.maxDuration <= brindle::Seconds{43200});
  require(brindle::decodeKeepAwakeRules(reread(encode(rules))) == rules);
  const auto notify = brindle::decodeAgentNotifyRules(object);
  require(brindle::decodeAgentNotifyRules(reread(encode(notify))) == notify);
}

void checkRecords(const brindle::JsonObject& object) {
  if (const auto sample = brindle::decodePlanSample(object)) {
    require(brindle::decodePlanSample(reread(encode(*sample))) == sample);
  }
  if (const auto account = brindle::decodePlanAccount(object)) {
    require(brindle::decodePlanAccount(reread(encode(*account))) == account);
  }
  if (const auto tracker = brindle::decodePlanAlertTracker(object)) {
    require(brindle::decodePlanAlertTracker(reread(encode(*tracker))) == tracker);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto document = brindle::parseJson({reinterpret_cast<const char*>(data), size});
  if (!document || document->object() == nullptr) return 0;
  checkRules(*document->object());
  checkRecords(*document->object());
  return 0;
}
