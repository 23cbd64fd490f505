#include "inventory/procargs_text.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "inventory/proc_text.h"

namespace brindle {

std::optional<ProcessStartText> parseProcessStart(std::string_view block) {
  std::int32_t count = 0;
  if (block.size() < sizeof count) return std::nullopt;
  std::memcpy(&count, block.data(), sizeof count);
  std::string_view rest = block.substr(sizeof count);
  const std::size_t pathEnd = rest.find('\0');
  if (count < 0 || pathEnd == 0 || pathEnd == std::string_view::npos) return std::nullopt;

  ProcessStartText start{.path = std::string(rest.substr(0, pathEnd)), .arguments = {}, .environment = {}};
  const std::size_t firstArgument = rest.find_first_not_of('\0', pathEnd);
  rest = firstArgument == std::string_view::npos ? std::string_view() : rest.substr(firstArgument);

  std::size_t end = 0;
  for (std::int32_t taken = 0; taken < count && end < rest.size(); ++taken) {
    const std::size_t zero = rest.find('\0', end);
    end = zero == std::string_view::npos ? rest.size() : zero + 1;
  }
  start.arguments = parseArguments(rest.substr(0, end));
  start.environment = rest.substr(end);
  return start;
}

}  // namespace brindle
