#include "platform/macos/MacAccessibility.h"

#include <ApplicationServices/ApplicationServices.h>

#include <array>

#include "platform/macos/CFRef.h"

namespace quorvane {

bool MacAccessibility::isProcessTrusted() const {
    return AXIsProcessTrusted();
}

std::string MacAccessibility::obstacle() const {
    if (!m_hasPrompted || isProcessTrusted())
        return {};
    return "Accessibility permission needed — enable in System Settings";
}

bool MacAccessibility::isProcessTrustedWithOptions(bool prompt) {
    m_hasPrompted = m_hasPrompted || prompt;
    std::array<const void*, 1> keys{kAXTrustedCheckOptionPrompt};
    std::array<const void*, 1> values{prompt ? kCFBooleanTrue : kCFBooleanFalse};
    const auto options = CFRef<CFDictionaryRef>::owned(CFDictionaryCreate(
        kCFAllocatorDefault, keys.data(), values.data(), static_cast<CFIndex>(keys.size()),
        &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    return AXIsProcessTrustedWithOptions(options.get());
}

} // namespace quorvane
