#include "platform/linux/keyboard/KeyboardNodes.h"

#include <fcntl.h>
#include <optional>
#include <string_view>
#include <unistd.h>

#include "platform/linux/common/Udev.h"

namespace quorvane {

namespace {

/// None if the device is no keyboard.
std::optional<std::filesystem::path> keyboardNode(udev_device& device) {
    const char* isKeyboard = udev_device_get_property_value(&device, "ID_INPUT_KEYBOARD");
    const char* node = udev_device_get_devnode(&device);
    if (!isKeyboard || std::string_view(isKeyboard) != "1" || !node)
        return std::nullopt;
    return node;
}

} // namespace

std::vector<std::filesystem::path> listKeyboardNodes() {
    const UdevContext context{udev_new()};
    if (!context)
        return {};
    return readUdevDevices(*context, "input", "event*", keyboardNode);
}

bool canReadKeyboard(const std::filesystem::path& node) {
    return faccessat(AT_FDCWD, node.c_str(), R_OK, AT_EACCESS) == 0;
}

} // namespace quorvane
