#include "platform/linux/keyboard/LinuxAccessibility.h"

#include <algorithm>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

#include "platform/linux/keyboard/LinuxEventTapService.h"

namespace quorvane {

namespace {

bool canRead(const std::filesystem::path& node) {
    const int descriptor = open(node.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    close(descriptor);
    return true;
}

} // namespace

LinuxAccessibility::LinuxAccessibility(Keyboards keyboards) : m_keyboards(std::move(keyboards)) {}

bool LinuxAccessibility::isProcessTrusted() const {
    if (isX11Session())
        return true;
    const auto nodes = m_keyboards();
    return std::any_of(nodes.begin(), nodes.end(), canRead);
}

bool LinuxAccessibility::isProcessTrustedWithOptions(bool prompt) {
    const bool isTrusted = isProcessTrusted();
    if (prompt && !isTrusted)
        m_prompt.show();
    return isTrusted;
}

} // namespace quorvane
