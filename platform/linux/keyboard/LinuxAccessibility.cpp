#include "platform/linux/keyboard/LinuxAccessibility.h"

#include <algorithm>
#include <utility>

#include "platform/linux/common/FileDescriptor.h"
#include "platform/linux/keyboard/LinuxEventTapService.h"

namespace quorvane {

namespace {

bool canRead(const std::filesystem::path& node) {
    return static_cast<bool>(FileDescriptor::open(node, O_RDONLY | O_NONBLOCK | O_NOCTTY));
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
    if (prompt && !isTrusted) {
        m_prompt.show();
        m_hasPrompted = true;
    }
    return isTrusted;
}

std::string LinuxAccessibility::obstacle() const {
    if (!m_hasPrompted || isProcessTrusted())
        return {};
    return "Accessibility permission needed — enable in System Settings";
}

} // namespace quorvane
