#import <Foundation/Foundation.h>
#import <IOKit/ps/IOPSKeys.h>
#import <IOKit/ps/IOPowerSources.h>

#include "platform/power_source.h"

namespace brindle {
namespace {

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
  return ThermalLevel::nominal;
}

PowerState powerState() {
  PowerState state;
  id info = CFBridgingRelease(IOPSCopyPowerSourcesInfo());
  if (info == nil) return state;
  NSArray* sources = CFBridgingRelease(IOPSCopyPowerSourcesList((__bridge CFTypeRef)info));
  for (id source in sources) {
    // The description belongs to `info`.
    NSDictionary* about =
        (__bridge NSDictionary*)IOPSGetPowerSourceDescription((__bridge CFTypeRef)info, (__bridge CFTypeRef)source);
    if (![about[@kIOPSTypeKey] isEqual:@kIOPSInternalBatteryType]) continue;
    NSNumber* capacity = about[@kIOPSCurrentCapacityKey];
    NSNumber* full = about[@kIOPSMaxCapacityKey];
    if (capacity != nil && full.longLongValue > 0) {
      state.batteryPercent = capacity.longLongValue * 100 / full.longLongValue;
    }
    state.charging = [about[@kIOPSIsChargingKey] boolValue];
    state.onBattery = [about[@kIOPSPowerSourceStateKey] isEqual:@kIOPSBatteryPowerValue];
  }
  return state;
}

}  // namespace

PowerReading readPowerAndHeat() {
  @autoreleasepool {
    return {powerState(), thermalLevel()};
  }
}

}  // namespace brindle
