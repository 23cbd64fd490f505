#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include "base/json_reader.h"
#include "base/json_writer.h"
#include "logic/sessions/agent_session_builder.h"
#include "tests/logic/sessions/process_generators.h"

namespace brindle {
namespace {

RC_GTEST_PROP(TrackedProcess, SnapshotsReadBackAsWritten, ()) {
  const auto snapshot = *crowdedSnapshots();
  const auto document = parseJson(writeJson(encodeSnapshot(snapshot)));
  RC_ASSERT(document.has_value());
  RC_ASSERT(decodeSnapshot(*document) == snapshot);
}

RC_GTEST_PROP(TrackedProcess, NumbersReadBackOverTheirWholeRange, ()) {
  const TrackedProcess process{.pid = *rc::gen::arbitrary<std::int32_t>(),
                               .ppid = *rc::gen::arbitrary<std::int32_t>(),
                               .uid = *rc::gen::arbitrary<std::uint32_t>(),
                               .start = dateFromSeconds(*rc::gen::arbitrary<double>()),
                               .startTime = *rc::gen::arbitrary<std::int64_t>(),
                               .footprint = *rc::gen::arbitrary<std::uint64_t>(),
                               .cpuPercent = *rc::gen::arbitrary<double>(),
                               .ports = *rc::gen::arbitrary<std::vector<int>>()};
  const auto document = parseJson(writeJson(encode(process)));
  RC_ASSERT((document.has_value() && document->object() != nullptr));
  RC_ASSERT(decodeTrackedProcess(*document->object()) == process);
}

RC_GTEST_PROP(AgentSession, SessionsReadBackAsWritten, ()) {
  for (const AgentSession& session : AgentSessionBuilder::build(*crowdedSnapshots(), kUser, kNow)) {
    const auto document = parseJson(writeJson(encode(session)));
    RC_ASSERT((document.has_value() && document->object() != nullptr));
    RC_ASSERT(decodeAgentSession(*document->object()) == session);
  }
}

}  // namespace
}  // namespace brindle
