#include "cli/mcp_conversation.h"

#include "base/json_reader.h"
#include "logic/mcp/mcp_server.h"
#include "logic/mcp/mcp_tools.h"

namespace brindle {
namespace {

constexpr std::string_view kTooLong = "Brindle's answer is longer than 256 KiB.";

// An id is echoed, so an enormous one makes even the shortest reply too long.
std::string replacement(const JsonValue* id) {
  std::string text = MCPReply::success(id, MCPTools::textResult(kTooLong, true));
  if (text.size() <= kMCPReplyLimit) return text;
  return MCPReply::error(nullptr, {MCPReply::kInvalidRequest, "The id is too long"});
}

}  // namespace

bool MCPConversation::receive(std::string_view bytes) {
  reader_.feed(bytes);
  while (const std::optional<MCPInput> input = reader_.next()) {
    if (const auto* message = std::get_if<MCPMessage>(&*input)) {
      if (!handle(*message)) return false;
    } else if (std::holds_alternative<MCPOversizedLine>(*input)) {
      if (!parseError(MCPFrameStyle::line)) return false;
    } else {
      (void)parseError(MCPFrameStyle::header);  // it is over either way
      return false;
    }
  }
  return true;
}

bool MCPConversation::handle(const MCPMessage& message) {
  const std::optional<JsonValue> parsed = parseJson(message.bytes);
  const JsonObject* object = parsed ? parsed->object() : nullptr;
  if (object == nullptr) return parseError(message.style);
  style_.observe(*object);
  if (isMCPReply(*object)) return true;
  const std::optional<std::string> text = handlers_.answer(*object);
  if (!text) return true;
  if (text->size() > kMCPReplyLimit) return reply(replacement(object->find("id")), message.style);
  return reply(*text, message.style);
}

bool MCPConversation::reply(std::string_view text, MCPFrameStyle style) const {
  return handlers_.send(style_.wrap(text, style));
}

bool MCPConversation::parseError(MCPFrameStyle style) const {
  return reply(MCPReply::error(nullptr, {MCPReply::kParseError, "Parse error"}), style);
}

}  // namespace brindle
