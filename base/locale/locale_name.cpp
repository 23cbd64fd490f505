#include "base/locale/locale_name.h"

#include <algorithm>

namespace brindle {
namespace {

bool isNameCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '-';
}

}  // namespace

std::string localeName(std::string_view posixName) {
  const std::string_view name = posixName.substr(0, posixName.find_first_of(".@"));
  const bool neutral = name.empty() || name == "C" || name == "POSIX";
  if (neutral || !std::all_of(name.begin(), name.end(), isNameCharacter)) return "en_US_POSIX";
  return std::string(name);
}

}  // namespace brindle
