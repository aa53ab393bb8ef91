#pragma once

// Framework: ApplicationServices, which also brings CoreFoundation and CoreGraphics.

#include "CoreFoundation/CoreFoundation.h"
#include "CoreGraphics/CoreGraphics.h"

QV_NONNULL_BEGIN

QV_EXTERN const CFStringRef kAXTrustedCheckOptionPrompt QV_AVAILABLE(10.9);
QV_EXTERN Boolean AXIsProcessTrusted() QV_AVAILABLE(10.4);
QV_EXTERN Boolean AXIsProcessTrustedWithOptions(CFDictionaryRef QV_NULLABLE options)
    QV_AVAILABLE(10.9);

QV_NONNULL_END
