#include "platform/settings.h"

#include <cerrno>
#include <filesystem>

#include "base/file.h"
#include "base/json_reader.h"
#include "platform/directories.h"

namespace brindle {
namespace {

Settings unread(const std::string& path, const std::string& why) {
  return {.problem = "cannot read the settings, taking the defaults: " + path + ": " + why};
}

}  // namespace

Settings readSettings(const std::string& path) {
  std::error_code missing;
  const std::filesystem::path resolved = std::filesystem::canonical(path, missing);
  if (missing == std::errc::no_such_file_or_directory) return {};
  if (missing) return unread(path, errorText(missing.value()));
  const Result<std::string> text = readFile(resolved.string(), kSettingsByteLimit);
  if (!text) return unread(path, errorText(text.error().code));
  std::optional<JsonValue> document = parseJson(*text);
  JsonObject* object = document ? document->object() : nullptr;
  if (object == nullptr) return unread(path, "expected a JSON object");
  return {.document = std::move(*object)};
}

Settings settingsOf(const Environment& environment) {
  const auto path = settingsFile(environment);
  return path ? readSettings(*path) : Settings{};
}

}  // namespace brindle
