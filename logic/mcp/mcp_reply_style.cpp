#include "logic/mcp/mcp_reply_style.h"

#include <optional>

#include "base/json_record.h"
#include "base/number_text.h"
#include "base/text.h"

namespace brindle {
namespace {

// Clients known to fail on a header before the reply. A name matches by its beginning, in any case.
struct KnownClient {
  std::string_view namePrefix;
  int fixedInMinor;  // 0: in no version; else the minor number of major version 0 from which on it bears the header
};
constexpr auto kKnownClients = std::to_array<KnownClient>({
    {"cursor", 0},
    {"antigravity", 0},
    {"windsurf", 0},
    {"codex-mcp-client", 138},
});

constexpr int kParseError = -32700;
constexpr int kInvalidRequest = -32600;

// "0.137.2" is below minor 138, "1.0" is not.
bool isBelowMinor(std::string_view version, int minor) {
  const std::size_t dot = version.find('.');
  if (dot == std::string_view::npos) return true;
  const std::string_view rest = version.substr(dot + 1);
  const auto majorNumber = integerFromText(version.substr(0, dot));
  const auto minorNumber = integerFromText(rest.substr(0, rest.find_first_not_of("0123456789")));
  if (!majorNumber || !minorNumber) return true;
  return *majorNumber == 0 && *minorNumber < minor;
}

std::optional<std::string> textMember(const JsonObject* object, std::string_view key) {
  return object == nullptr ? std::nullopt : stringMember(*object, key);
}

bool isComplaint(const JsonObject& message) {
  const JsonValue* id = message.find("id");
  if (id != nullptr && !id->isNull()) return false;
  const JsonObject* error = objectMember(message, "error");
  if (error == nullptr) return false;
  const auto code = integerMember(*error, "code");
  return code == kParseError || code == kInvalidRequest;
}

}  // namespace

bool needsBareLines(MCPClientInfo client) {
  for (const KnownClient& known : kKnownClients) {
    if (!beginsWithAnyCase(client.name, known.namePrefix)) continue;
    return known.fixedInMinor == 0 || isBelowMinor(client.version, known.fixedInMinor);
  }
  return false;
}

void MCPReplyStyle::observe(const JsonObject& message) {
  if (stringMember(message, "method") == "initialize") {
    const JsonObject* params = objectMember(message, "params");
    const JsonObject* client = params == nullptr ? nullptr : objectMember(*params, "clientInfo");
    const std::string name = textMember(client, "name").value_or("");
    const std::string version = textMember(client, "version").value_or("");
    bareLines_ = bareLines_ || needsBareLines({name, version});
  } else if (isMCPReply(message)) {
    bareLines_ = bareLines_ || isComplaint(message);
  }
}

std::string MCPReplyStyle::wrap(std::string_view reply, MCPFrameStyle request) const {
  if (request == MCPFrameStyle::header) return MCPFraming::frame(reply);
  const bool bare = choice_ == MCPFramingChoice::lines || (choice_ == MCPFramingChoice::automatic && bareLines_);
  std::string bytes = bare ? std::string(reply) : MCPFraming::frame(reply);
  bytes += '\n';
  return bytes;
}

bool isMCPReply(const JsonObject& message) {
  if (message.find("method") != nullptr) return false;
  return message.find("result") != nullptr || message.find("error") != nullptr;
}

}  // namespace brindle
