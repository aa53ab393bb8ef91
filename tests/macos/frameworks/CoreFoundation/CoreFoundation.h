#pragma once

// Framework: CoreFoundation.

#include <cstdint>

#include "Annotations.h"

// The names are the system's.
// NOLINTBEGIN(bugprone-reserved-identifier)

QV_NONNULL_BEGIN

using Boolean = unsigned char;
using UInt8 = std::uint8_t;
using CFIndex = long;
using CFTypeID = unsigned long;
using CFStringEncoding = std::uint32_t;

using CFTypeRef = const void*;
using CFAllocatorRef = const struct __CFAllocator*;
using CFStringRef = const struct __CFString*;
using CFNumberRef = const struct __CFNumber*;
using CFBooleanRef = const struct __CFBoolean*;
using CFDictionaryRef = const struct __CFDictionary*;
using CFSetRef = const struct __CFSet*;
using CFRunLoopRef = struct __CFRunLoop*;
using CFRunLoopSourceRef = struct __CFRunLoopSource*;
using CFRunLoopMode = CFStringRef;
using CFMachPortRef = struct __CFMachPort*;

QV_EXTERN const CFAllocatorRef QV_NULLABLE kCFAllocatorDefault;

QV_EXTERN CFTypeRef CFRetain(CFTypeRef object);
QV_EXTERN void CFRelease(CFTypeRef object);
QV_EXTERN CFTypeID CFGetTypeID(CFTypeRef object);

// The real one is a macro as well, over this function or the compiler's own constant strings.
QV_EXTERN CFStringRef __CFStringMakeConstantString(const char* text);
#define CFSTR(text) __CFStringMakeConstantString("" text "")
constexpr CFStringEncoding kCFStringEncodingUTF8 = 0x08000100;
QV_EXTERN CFStringRef QV_NULLABLE CFStringCreateWithBytes(CFAllocatorRef QV_NULLABLE allocator,
                                                          const UInt8* bytes, CFIndex numBytes,
                                                          CFStringEncoding encoding,
                                                          Boolean isExternalRepresentation);

using CFNumberType = CFIndex;
constexpr CFNumberType kCFNumberIntType = 9;
QV_EXTERN CFTypeID CFNumberGetTypeID();
QV_EXTERN CFNumberRef QV_NULLABLE CFNumberCreate(CFAllocatorRef QV_NULLABLE allocator,
                                                 CFNumberType type, const void* value);
QV_EXTERN Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value);

QV_EXTERN const CFBooleanRef kCFBooleanTrue;
QV_EXTERN const CFBooleanRef kCFBooleanFalse;

struct CFDictionaryKeyCallBacks {
    CFIndex version;
};

struct CFDictionaryValueCallBacks {
    CFIndex version;
};

QV_EXTERN const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
QV_EXTERN const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;
QV_EXTERN CFDictionaryRef QV_NULLABLE
CFDictionaryCreate(CFAllocatorRef QV_NULLABLE allocator, const void* QV_NULLABLE* QV_NULLABLE keys,
                   const void* QV_NULLABLE* QV_NULLABLE values, CFIndex numValues,
                   const CFDictionaryKeyCallBacks* QV_NULLABLE keyCallBacks,
                   const CFDictionaryValueCallBacks* QV_NULLABLE valueCallBacks);

QV_EXTERN CFIndex CFSetGetCount(CFSetRef set);
QV_EXTERN void CFSetGetValues(CFSetRef set, const void* QV_NULLABLE* QV_NULL_UNSPECIFIED values);

QV_EXTERN const CFRunLoopMode kCFRunLoopDefaultMode;
QV_EXTERN const CFRunLoopMode kCFRunLoopCommonModes;
QV_EXTERN CFRunLoopRef QV_NULL_UNSPECIFIED CFRunLoopGetCurrent();
QV_EXTERN void CFRunLoopAddSource(CFRunLoopRef QV_NULL_UNSPECIFIED runLoop,
                                  CFRunLoopSourceRef QV_NULL_UNSPECIFIED source,
                                  CFRunLoopMode QV_NULL_UNSPECIFIED mode);
QV_EXTERN void CFRunLoopRemoveSource(CFRunLoopRef QV_NULL_UNSPECIFIED runLoop,
                                     CFRunLoopSourceRef QV_NULL_UNSPECIFIED source,
                                     CFRunLoopMode QV_NULL_UNSPECIFIED mode);

QV_EXTERN CFRunLoopSourceRef QV_NULL_UNSPECIFIED CFMachPortCreateRunLoopSource(
    CFAllocatorRef QV_NULLABLE allocator, CFMachPortRef QV_NULL_UNSPECIFIED port, CFIndex order);
QV_EXTERN void CFMachPortInvalidate(CFMachPortRef QV_NULL_UNSPECIFIED port);

QV_NONNULL_END

// NOLINTEND(bugprone-reserved-identifier)
