#include "platform/macos/MacSystemInfo.h"

#include <sys/sysctl.h>

#include <vector>

namespace quorvane {

std::string MacSystemInfo::modelName() const {
    constexpr auto name = "hw.model";
    std::size_t length = 0;
    if (sysctlbyname(name, nullptr, &length, nullptr, 0) != 0)
        return {};
    // One byte more, so that it is terminated in any case.
    std::vector<char> value(length + 1);
    if (sysctlbyname(name, value.data(), &length, nullptr, 0) != 0)
        return {};
    return value.data();
}

} // namespace quorvane
