#include <mach-o/dyld.h>

#include <cstdint>
#include <filesystem>

#include "platform/executable_path.h"

namespace brindle {

Result<std::string> executablePath() {
  std::uint32_t size = 0;
  static_cast<void>(_NSGetExecutablePath(nullptr, &size));  // answers the size with its NUL
  std::string path(size, '\0');
  if (_NSGetExecutablePath(path.data(), &size) != 0) return fail(ENAMETOOLONG, "ask for the executable's path");
  path.resize(path.find('\0'));
  std::error_code error;
  const auto resolved = std::filesystem::canonical(path, error);
  if (error) return fail(error.value(), "resolve " + path);
  return resolved.string();
}

}  // namespace brindle
