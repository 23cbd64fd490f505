// Any bytes give a value or none, and a value survives being written and read again in every style.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "base/json_reader.h"
#include "base/json_writer.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace brindle;
  const auto value = parseJson({reinterpret_cast<const char*>(data), size});
  if (!value) return 0;
  for (const bool pretty : {false, true}) {
    for (const bool escapeSlashes : {false, true}) {
      if (parseJson(writeJson(*value, {.pretty = pretty, .escapeSlashes = escapeSlashes})) != value) std::abort();
    }
  }
  const std::string sorted = writeJson(*value, {.sortedKeys = true});
  if (writeJson(*parseJson(sorted), {.sortedKeys = true}) != sorted) std::abort();
  return 0;
}
