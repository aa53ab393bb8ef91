#pragma once

// Framework: IOKit.

#include "CoreFoundation/CoreFoundation.h"

// The names are the system's.
// NOLINTBEGIN(bugprone-reserved-identifier)

QV_NONNULL_BEGIN

using IOReturn = int;
using IOOptionBits = std::uint32_t;
using IOHIDManagerRef = struct __IOHIDManager*;
using IOHIDDeviceRef = struct __IOHIDDevice*;

constexpr IOReturn kIOReturnSuccess = 0;
constexpr IOReturn kIOReturnNotOpen = static_cast<IOReturn>(0xE00002CD);

enum : IOOptionBits { kIOHIDOptionsTypeNone = 0 };

enum IOHIDReportType : std::uint32_t {
    kIOHIDReportTypeInput = 0,
    kIOHIDReportTypeOutput = 1,
    kIOHIDReportTypeFeature = 2,
};

#define kIOHIDVendorIDKey "VendorID"
#define kIOHIDProductIDKey "ProductID"

QV_EXTERN IOHIDManagerRef IOHIDManagerCreate(CFAllocatorRef QV_NULLABLE allocator,
                                             IOOptionBits options) QV_AVAILABLE(10.5);
QV_EXTERN IOReturn IOHIDManagerOpen(IOHIDManagerRef manager, IOOptionBits options)
    QV_AVAILABLE(10.5);
QV_EXTERN IOReturn IOHIDManagerClose(IOHIDManagerRef manager, IOOptionBits options)
    QV_AVAILABLE(10.5);
QV_EXTERN void IOHIDManagerScheduleWithRunLoop(IOHIDManagerRef manager, CFRunLoopRef runLoop,
                                               CFStringRef runLoopMode) QV_AVAILABLE(10.5);
QV_EXTERN void IOHIDManagerSetDeviceMatching(IOHIDManagerRef manager,
                                             CFDictionaryRef QV_NULLABLE matching)
    QV_AVAILABLE(10.5);
QV_EXTERN CFSetRef QV_NULLABLE IOHIDManagerCopyDevices(IOHIDManagerRef manager) QV_AVAILABLE(10.5);

QV_EXTERN IOReturn IOHIDDeviceOpen(IOHIDDeviceRef device, IOOptionBits options) QV_AVAILABLE(10.5);
QV_EXTERN CFTypeRef QV_NULLABLE IOHIDDeviceGetProperty(IOHIDDeviceRef device, CFStringRef key)
    QV_AVAILABLE(10.5);
QV_EXTERN IOReturn IOHIDDeviceGetReport(IOHIDDeviceRef device, IOHIDReportType reportType,
                                        CFIndex reportID, std::uint8_t* report,
                                        CFIndex* reportLength) QV_AVAILABLE(10.5);

QV_NONNULL_END

// NOLINTEND(bugprone-reserved-identifier)
