#include "platform/power_source.h"

#import <Foundation/Foundation.h>
#import <IOKit/ps/IOPSKeys.h>
#import <IOKit/ps/IOPowerSources.h>

namespace brindle {
namespace {

NSNumber* _Nullable numberIn(NSDictionary* description, const char* key) {
  id const value = description[[NSString stringWithUTF8String:key]];
  return [value isKindOfClass:NSNumber.class] ? value : nil;
}

PowerState powerState() {
  PowerState state;
  const CFTypeRef blob = IOPSCopyPowerSourcesInfo();
  if (blob == nullptr) return state;
  const CFStringRef provider = IOPSGetProvidingPowerSourceType(blob);
  state.onBattery = provider != nullptr && CFEqual(provider, CFSTR(kIOPSBatteryPowerValue));
  NSArray* const sources = CFBridgingRelease(IOPSCopyPowerSourcesList(blob));
  for (id source in sources) {
    // Belongs to the blob.
    NSDictionary* const description =
        (__bridge NSDictionary*)IOPSGetPowerSourceDescription(blob, (__bridge CFTypeRef)source);
    if (![description[@kIOPSTypeKey] isEqual:@kIOPSInternalBatteryType]) continue;
    NSNumber* const current = numberIn(description, kIOPSCurrentCapacityKey);
    NSNumber* const full = numberIn(description, kIOPSMaxCapacityKey);
    if (current != nil && full.longLongValue > 0) {
      state.batteryPercent = current.longLongValue * 100 / full.longLongValue;
    }
    state.charging = numberIn(description, kIOPSIsChargingKey).boolValue != NO;
    break;  // no Mac has a second one
  }
  CFRelease(blob);
  return state;
}

ThermalLevel thermalLevel() {
  switch (NSProcessInfo.processInfo.thermalState) {
    case NSProcessInfoThermalStateNominal:
      return ThermalLevel::nominal;
    case NSProcessInfoThermalStateFair:
      return ThermalLevel::fair;
    case NSProcessInfoThermalStateSerious:
      return ThermalLevel::serious;
    case NSProcessInfoThermalStateCritical:
      return ThermalLevel::critical;
  }
  return ThermalLevel::critical;  // a state beyond the ones that are known is hotter than they
}

}  // namespace

PowerReading readPowerAndHeat() {
  @autoreleasepool {
    return {powerState(), thermalLevel()};
  }
}

}  // namespace brindle
