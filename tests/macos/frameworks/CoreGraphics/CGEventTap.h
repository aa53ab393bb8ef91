#pragma once

// Framework: CoreGraphics.

#include "CoreFoundation/CoreFoundation.h"

// The names are the system's.
// NOLINTBEGIN(bugprone-reserved-identifier)

QV_NONNULL_BEGIN

using CGEventRef = struct __CGEvent*;
using CGEventTapProxy = struct __CGEventTapProxy*;
using CGEventMask = std::uint64_t;

enum CGEventType : std::uint32_t {
    kCGEventKeyDown = 10,
    kCGEventKeyUp = 11,
    kCGEventFlagsChanged = 12,
    kCGEventTapDisabledByTimeout = 0xFFFFFFFE,
    kCGEventTapDisabledByUserInput = 0xFFFFFFFF,
};

enum CGEventField : std::uint32_t { kCGKeyboardEventAutorepeat = 8 };

enum CGEventTapLocation : std::uint32_t {
    kCGHIDEventTap = 0,
    kCGSessionEventTap = 1,
    kCGAnnotatedSessionEventTap = 2,
};

enum CGEventTapPlacement : std::uint32_t { kCGHeadInsertEventTap = 0, kCGTailAppendEventTap = 1 };

enum CGEventTapOptions : std::uint32_t {
    kCGEventTapOptionDefault = 0,
    kCGEventTapOptionListenOnly = 1,
};

using CGEventTapCallBack = CGEventRef QV_NULLABLE (*)(CGEventTapProxy proxy, CGEventType type,
                                                      CGEventRef event, void* QV_NULLABLE userInfo);

QV_EXTERN CFMachPortRef QV_NULLABLE CGEventTapCreate(CGEventTapLocation tap,
                                                     CGEventTapPlacement place,
                                                     CGEventTapOptions options,
                                                     CGEventMask eventsOfInterest,
                                                     CGEventTapCallBack callback,
                                                     void* QV_NULLABLE userInfo) QV_AVAILABLE(10.4);
QV_EXTERN void CGEventTapEnable(CFMachPortRef tap, bool enable) QV_AVAILABLE(10.4);
QV_EXTERN std::int64_t CGEventGetIntegerValueField(CGEventRef QV_NULLABLE event, CGEventField field)
    QV_AVAILABLE(10.4);

QV_NONNULL_END

// NOLINTEND(bugprone-reserved-identifier)
