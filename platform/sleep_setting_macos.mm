#include "platform/sleep_setting_macos.h"

#include <CoreFoundation/CoreFoundation.h>
#include <IOKit/IOKitLib.h>

namespace brindle {

std::optional<bool> systemSleepDisabled() {
  const io_service_t root = IOServiceGetMatchingService(kIOMainPortDefault, IOServiceMatching("IOPMrootDomain"));
  if (root == IO_OBJECT_NULL) return std::nullopt;
  CFTypeRef value = IORegistryEntryCreateCFProperty(root, CFSTR("SleepDisabled"), kCFAllocatorDefault, 0);
  IOObjectRelease(root);
  if (value == nullptr) return std::nullopt;
  std::optional<bool> disabled;
  if (CFGetTypeID(value) == CFBooleanGetTypeID()) disabled = CFBooleanGetValue(static_cast<CFBooleanRef>(value));
  CFRelease(value);
  return disabled;
}

}  // namespace brindle
