#include "inventory/arguments_block.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "inventory/proc_text.h"

namespace brindle {

std::optional<ArgumentsBlock> parseArgumentsBlock(std::string_view block, std::span<const std::string_view> names) {
  std::int32_t count = 0;
  if (block.size() < sizeof count) return std::nullopt;
  std::memcpy(&count, block.data(), sizeof count);
  if (count < 0) return std::nullopt;
  block.remove_prefix(sizeof count);

  ArgumentsBlock found;
  const std::size_t pathEnd = std::min(block.find('\0'), block.size());
  found.path = block.substr(0, pathEnd);
  block.remove_prefix(pathEnd);
  block.remove_prefix(std::min(block.find_first_not_of('\0'), block.size()));
  for (std::int32_t each = 0; each < count; ++each) {
    const std::size_t end = block.find('\0');
    if (end == std::string_view::npos) return found;
    if (found.arguments.size() < kArgumentCountLimit) {
      found.arguments.emplace_back(block.substr(0, std::min(end, kArgumentByteLimit)));
    }
    block.remove_prefix(end + 1);
  }
  found.variables = parseNamedVariables(block, names);
  return found;
}

}  // namespace brindle
