#include "platform/macos/MacSystemInfo.h"

#include <ApplicationServices/ApplicationServices.h>
#include <sys/sysctl.h>

#include <array>
#include <vector>

#include "platform/macos/CFRef.h"

namespace quorvane {

std::string MacSystemInfo::modelName() const {
    constexpr auto name = "hw.model";
    std::size_t length = 0;
    if (sysctlbyname(name, nullptr, &length, nullptr, 0) != 0)
        return {};
    // One more than there is, so that it ends in any case.
    std::vector<char> value(length + 1);
    if (sysctlbyname(name, value.data(), &length, nullptr, 0) != 0)
        return {};
    return value.data();
}

bool MacSystemInfo::isProcessTrusted() const {
    return AXIsProcessTrusted();
}

bool MacSystemInfo::isProcessTrustedWithOptions(bool prompt) {
    std::array<const void*, 1> keys{kAXTrustedCheckOptionPrompt};
    std::array<const void*, 1> values{prompt ? kCFBooleanTrue : kCFBooleanFalse};
    const auto options = CFRef<CFDictionaryRef>::owned(CFDictionaryCreate(
        kCFAllocatorDefault, keys.data(), values.data(), static_cast<CFIndex>(keys.size()),
        &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    return AXIsProcessTrustedWithOptions(options.get());
}

} // namespace quorvane
