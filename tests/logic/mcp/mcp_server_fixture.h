// A server over scripted functions that record how they were called; for the tests of the server and of its tools.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/json_reader.h"
#include "base/json_record.h"
#include "logic/mcp/mcp_server.h"

namespace brindle {

inline constexpr Date kCallTime = dateFromSeconds(1'772'352'000);

struct ToolAnswer {
  std::string text;
  bool isError = false;

  bool operator==(const ToolAnswer&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const ToolAnswer& answer) {
  return out << (answer.isError ? "error: " : "text: ") << answer.text;
}

class MCPServerFixture : public ::testing::Test {
 protected:
  MCPServerFixture() {
    server.enabled = true;
    server.status = [this] { return asked("status", "STATUS"); };
    server.ports = [this] { return asked("ports", "PORTS"); };
    server.agents = [this]() -> Result<std::string> {
      asked("agents", "");
      return agentsAnswer;
    };
    server.safety = [this](const MCPTarget& target) {
      asked("safety", "");
      targets.push_back(target);
      return verdict;
    };
    server.requestQuit = [this](const MCPQuitCall& call) -> Result<std::string> {
      asked("requestQuit", "");
      quits.push_back(call);
      return quitAnswer;
    };
    server.log = [this](const MCPLogEntry& entry) { logged.push_back(entry); };
    server.offMessage = "It is off.";
  }

  /// The text and the flag of the tool result for these params.
  ToolAnswer call(const std::string& params) {
    const auto reply =
        server.handle(R"({"jsonrpc":"2.0","id":1,"method":"tools/call","params":)" + params + "}", kCallTime);
    const auto parsed = parseJson(reply.value_or(""));
    const JsonObject* object = parsed ? parsed->object() : nullptr;
    const JsonObject* result = object ? objectMember(*object, "result") : nullptr;
    const JsonArray* content = result ? arrayMember(*result, "content") : nullptr;
    if (content == nullptr || content->size() != 1 || (*content)[0].object() == nullptr) {
      ADD_FAILURE() << "no tool result: " << reply.value_or("none");
      return {};
    }
    const JsonObject& element = *(*content)[0].object();
    EXPECT_EQ(stringMember(element, "type"), "text");
    EXPECT_EQ(element.size(), 2u);
    EXPECT_EQ(result->size(), 2u);
    return {stringMember(element, "text").value_or("no text"), booleanMember(*result, "isError").value_or(false)};
  }

  std::string asked(const std::string& function, const std::string& answer) {
    calls.push_back(function);
    return answer;
  }

  static MCPLogEntry entry(const std::string& tool, const std::string& summary, const std::string& result) {
    return MCPLogEntry{kCallTime, tool, summary, result};
  }

  MCPServer server;
  Result<std::string> agentsAnswer = "AGENTS";
  Result<std::string> quitAnswer = "ID-1";
  MCPSafetyVerdict verdict{"askFirst", "Brindle will ask you in the app before it stops anything.", "node"};
  std::vector<std::string> calls;
  std::vector<MCPTarget> targets;
  std::vector<MCPQuitCall> quits;
  std::vector<MCPLogEntry> logged;
};

}  // namespace brindle
