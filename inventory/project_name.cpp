#include "inventory/project_name.h"

#include <algorithm>
#include <array>
#include <span>
#include <utility>
#include <vector>

#include "base/json_reader.h"
#include "base/json_record.h"
#include "base/text.h"
#include "inventory/toml_table.h"

namespace brindle {
namespace {

std::optional<std::string> named(std::optional<std::string> name) {
  if (!name) return std::nullopt;
  std::string trimmed(trimWhiteSpace(*name));
  if (trimmed.empty()) return std::nullopt;
  return trimmed;
}

std::optional<std::string> nameInJson(std::string_view text) {
  const auto document = parseJson(text);
  if (!document || document->object() == nullptr) return std::nullopt;
  return named(stringMember(*document->object(), "name"));
}

std::optional<std::string> nameInToml(std::string_view text, std::span<const std::string_view> places) {
  const std::optional<toml::table> document = parseToml(text);
  if (!document) return std::nullopt;
  for (const std::string_view place : places) {
    if (auto name = named(tomlText(document->at_path(place).node()))) return name;
  }
  return std::nullopt;
}

/// "module example.com/shop/api" is "api"; a major version at the end ("/v2") is no name.
std::optional<std::string> nameInGoMod(std::string_view text) {
  for (const std::string_view line : newlinePieces(text)) {
    std::string_view rest = trimWhiteSpace(line);
    if (!rest.starts_with("module ") && !rest.starts_with("module\t")) continue;
    rest = trimWhiteSpace(rest.substr(7));
    rest = trimWhiteSpace(rest.substr(0, rest.find("//")));
    if (rest.size() > 2 && rest.front() == '"' && rest.back() == '"') rest = rest.substr(1, rest.size() - 2);
    const std::size_t slash = rest.rfind('/');
    if (slash != std::string_view::npos && slash + 2 < rest.size() && rest[slash + 1] == 'v' &&
        rest.find_first_not_of("0123456789", slash + 2) == std::string_view::npos) {
      rest = rest.substr(0, slash);
    }
    return named(lastPathComponent(rest));
  }
  return std::nullopt;
}

std::string_view parentFolder(std::string_view folder) {
  const std::size_t slash = folder.rfind('/');
  return slash == std::string_view::npos || slash == 0 ? std::string_view("/") : folder.substr(0, slash);
}

bool isWithin(std::string_view path, std::string_view folder) {
  return path == folder || (path.size() > folder.size() && path.starts_with(folder) && path[folder.size()] == '/');
}

}  // namespace

std::optional<std::string> projectNameFrom(Manifest manifest, std::string_view text) {
  static constexpr auto kCargo = std::to_array<std::string_view>({"package.name"});
  static constexpr auto kPython = std::to_array<std::string_view>({"project.name", "tool.poetry.name"});
  switch (manifest) {
    case Manifest::packageJson:
      return nameInJson(text);
    case Manifest::cargoToml:
      return nameInToml(text, kCargo);
    case Manifest::pyprojectToml:
      return nameInToml(text, kPython);
    case Manifest::goMod:
      return nameInGoMod(text);
    case Manifest::git:
      return std::nullopt;
  }
  return std::nullopt;
}

ProjectFinder::ProjectFinder(std::string home, ReadManifest read) : home_(std::move(home)), read_(std::move(read)) {
  while (home_.size() > 1 && home_.ends_with('/')) home_.pop_back();
}

std::optional<std::string> ProjectFinder::nameIn(const std::string& folder) const {
  for (const auto& row : allCases<Manifest>()) {
    const auto text = read_(folder + "/" + std::string(row.text));
    if (!text) continue;
    if (auto name = projectNameFrom(row.value, *text)) return name;
    return lastPathComponent(folder);
  }
  return std::nullopt;
}

std::optional<std::string> ProjectFinder::projectOf(std::string_view folder) {
  std::vector<std::string> asked;
  std::optional<std::string> answer;
  for (int depth = 0; depth < kProjectDepthLimit; ++depth) {
    if (!folder.starts_with('/') || folder == "/" || (!home_.empty() && isWithin(home_, folder))) break;
    std::string here(folder);
    if (const auto known = known_.find(here); known != known_.end()) {
      answer = known->second;
      break;
    }
    asked.push_back(here);
    answer = nameIn(here);
    if (answer) break;
    folder = parentFolder(folder);
  }
  for (std::string& each : asked) known_.insert_or_assign(std::move(each), answer);
  return answer;
}

}  // namespace brindle
