// Any bytes are cut into messages in the same way wherever the reads were cut, memory stays bounded, and whatever the
// messages hold, each is answered by JSON or by nothing.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "base/json_reader.h"
#include "logic/mcp/mcp_message_reader.h"
#include "logic/mcp/mcp_reply_style.h"
#include "logic/mcp/mcp_server.h"

namespace brindle {
namespace {

MCPServer server() {
  MCPServer made;
  made.enabled = true;
  made.status = made.ports = [] { return std::string("{}"); };
  made.agents = []() -> Result<std::string> { return "{}"; };
  made.safety = [](const MCPTarget&) { return MCPSafetyVerdict{"askFirst", "r", "n"}; };
  made.requestQuit = [](const MCPQuitCall& call) -> Result<std::string> { return call.note.value_or("id"); };
  made.log = [](const MCPLogEntry&) {};
  return made;
}

std::vector<MCPInput> inputsOf(std::string_view bytes, std::size_t piece) {
  MCPMessageReader reader;
  std::vector<MCPInput> inputs;
  while (!bytes.empty()) {
    const std::string_view fed = bytes.substr(0, piece);
    reader.feed(fed);
    bytes.remove_prefix(fed.size());
    while (auto input = reader.next()) inputs.push_back(*std::move(input));
    if (reader.held() > kMCPMessageLimit + kMCPHeaderLimit + 4 + piece) std::abort();
  }
  return inputs;
}

void answer(const MCPServer& asked, const MCPMessage& message) {
  MCPReplyStyle style(MCPFramingChoice::automatic);
  if (const auto parsed = parseJson(message.bytes); parsed && parsed->object() != nullptr) {
    style.observe(*parsed->object());
  }
  const auto reply = asked.handle(message.bytes, dateFromSeconds(0));
  if (!reply) return;
  if (!parseJson(*reply)) std::abort();
  std::string framed = style.wrap(*reply, MCPFrameStyle::header);
  if (MCPFraming::nextMessage(framed) != reply || !framed.empty()) std::abort();
}

}  // namespace
}  // namespace brindle

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace brindle;
  if (size == 0) return 0;
  const std::size_t piece = 1 + data[0] % 61;
  const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  const std::vector<MCPInput> inputs = inputsOf(bytes, std::max<std::size_t>(bytes.size(), 1));
  if (inputsOf(bytes, piece) != inputs) std::abort();
  const MCPServer asked = server();
  for (const MCPInput& input : inputs) {
    if (const auto* message = std::get_if<MCPMessage>(&input)) answer(asked, *message);
  }
  return 0;
}
