#import <CoreGraphics/CGWindow.h>
#import <Foundation/Foundation.h>
#include <dlfcn.h>

#include "platform/frontmost.h"

namespace brindle {

// The window server is asked rather than NSWorkspace, whose answer changes only while a main run loop runs, and the MCP
// server has none. The framework is loaded when it is first needed: hook commands must not pay for it.
std::optional<std::int32_t> frontmostApplication() {
  static void* const graphics =
      dlopen("/System/Library/Frameworks/CoreGraphics.framework/CoreGraphics", RTLD_LAZY | RTLD_LOCAL);
  if (graphics == nullptr) return std::nullopt;
  const auto copyWindows =
      reinterpret_cast<decltype(&CGWindowListCopyWindowInfo)>(dlsym(graphics, "CGWindowListCopyWindowInfo"));
  if (copyWindows == nullptr) return std::nullopt;
  @autoreleasepool {
    // From front to back. Menu bar, Dock and notifications float on other layers than 0, where applications are.
    NSArray* windows = CFBridgingRelease(
        copyWindows(kCGWindowListOptionOnScreenOnly | kCGWindowListExcludeDesktopElements, kCGNullWindowID));
    for (NSDictionary* window in windows) {
      NSNumber* layer = window[@"kCGWindowLayer"];
      NSNumber* owner = window[@"kCGWindowOwnerPID"];
      if (layer != nil && layer.intValue == 0 && owner != nil) return owner.intValue;
    }
  }
  return std::nullopt;
}

}  // namespace brindle
