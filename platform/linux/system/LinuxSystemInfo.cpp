#include "platform/linux/system/LinuxSystemInfo.h"

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

#include "platform/linux/common/SysfsText.h"
#include "platform/linux/keyboard/SessionType.h"

namespace quorvane {

namespace {

constexpr std::array modelFiles{"sys/class/dmi/id/product_name", "proc/device-tree/model"};

bool canRead(const std::filesystem::path& node) {
    const int descriptor = open(node.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    close(descriptor);
    return true;
}

} // namespace

LinuxSystemInfo::LinuxSystemInfo(std::filesystem::path root, Keyboards keyboards)
    : m_root(std::move(root)), m_keyboards(std::move(keyboards)) {}

std::string LinuxSystemInfo::modelName() const {
    for (const char* file : modelFiles) {
        const auto model = readSystemText(m_root / file);
        if (model && !model->empty())
            return *model;
    }
    return {};
}

bool LinuxSystemInfo::isProcessTrusted() const {
    if (isX11Session())
        return true;
    const auto nodes = m_keyboards();
    return std::any_of(nodes.begin(), nodes.end(), canRead);
}

bool LinuxSystemInfo::isProcessTrustedWithOptions(bool prompt) {
    const bool isTrusted = isProcessTrusted();
    if (prompt && !isTrusted)
        m_prompt.show();
    return isTrusted;
}

} // namespace quorvane
