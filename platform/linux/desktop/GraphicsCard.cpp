#include "platform/linux/desktop/GraphicsCard.h"

#include <unistd.h>

#include <algorithm>
#include <string>

namespace quorvane {

namespace {

bool mayUse(const std::filesystem::path& device) {
    return access(device.c_str(), R_OK | W_OK) == 0;
}

// Cards that can render have a render node besides their "card0", which only shows pictures.
bool isRenderNode(const std::filesystem::path& device) {
    return device.filename().string().rfind("renderD", 0) == 0;
}

} // namespace

bool hasGraphicsCard(const std::filesystem::path& devices) {
    // NVIDIA's own driver may have no node under dri.
    if (mayUse(devices / "nvidiactl"))
        return true;
    std::error_code none;
    const std::filesystem::directory_iterator cards(devices / "dri", none);
    return std::any_of(begin(cards), end(cards), [](const auto& entry) {
        return isRenderNode(entry.path()) && mayUse(entry.path());
    });
}

} // namespace quorvane
