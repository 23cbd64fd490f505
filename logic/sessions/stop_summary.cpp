#include "logic/sessions/stop_summary.h"

#include "base/text.h"
#include "logic/sessions/byte_text.h"

namespace brindle::StopSummary {

std::string text(std::uint64_t bytes, const std::vector<int>& ports) {
  std::vector<std::string> numbers;
  numbers.reserve(ports.size());
  for (const int port : ports) numbers.push_back(std::to_string(port));
  const std::string portText = "ports " + joined(numbers, ", ");

  if (ports.empty()) return "Stopping these frees " + ByteText::text(bytes) + ".";
  if (bytes == 0) return "Stopping these frees " + portText + ".";
  return "Stopping these frees " + ByteText::text(bytes) + " and " + portText + ".";
}

}  // namespace brindle::StopSummary
