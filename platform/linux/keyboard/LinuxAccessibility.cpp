#include "platform/linux/keyboard/LinuxAccessibility.h"

#include "platform/linux/keyboard/LinuxEventTapService.h"

namespace quorvane {

bool LinuxAccessibility::isProcessTrusted() const {
    return isX11Session() || m_reader.isRunning() || m_reader.canStartWithoutAsking();
}

bool LinuxAccessibility::isProcessTrustedWithOptions(bool prompt) {
    const bool isTrusted = isProcessTrusted();
    if (prompt && !isTrusted)
        m_reader.ask();
    return isTrusted;
}

} // namespace quorvane
