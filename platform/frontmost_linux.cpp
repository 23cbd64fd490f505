#include "platform/frontmost.h"

namespace brindle {

// Wayland tells no client about the windows of others, each desktop has a private way around that, and X11's property
// of the active window names, on a Wayland desktop, at best a window of a program that still uses X11.
std::optional<std::int32_t> frontmostApplication() { return std::nullopt; }

}  // namespace brindle
