#include "platform/executable_path.h"

#include <filesystem>

namespace brindle {

Result<std::string> executablePath() {
  std::error_code error;
  const auto path = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) return fail(error.value(), "read /proc/self/exe");
  return path.string();
}

}  // namespace brindle
