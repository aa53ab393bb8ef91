#include "platform/linux/LinuxSystemInfo.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

#include "platform/linux/SysfsText.h"
#include "platform/linux/Udev.h"

namespace quorvane {

namespace {

constexpr std::array modelFiles{"sys/class/dmi/id/product_name", "proc/device-tree/model"};

bool isSet(const char* variable) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nobody changes the environment while we run.
    const char* value = std::getenv(variable);
    return value && *value;
}

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
    // A Wayland session has a DISPLAY too, for X11 programs, but keys reach that only while one of
    // those has the focus.
    if (isSet("DISPLAY") && !isSet("WAYLAND_DISPLAY"))
        return true;
    const auto nodes = m_keyboards();
    return std::any_of(nodes.begin(), nodes.end(), canRead);
}

bool LinuxSystemInfo::isProcessTrustedWithOptions(bool /*prompt*/) {
    return isProcessTrusted();
}

std::vector<std::filesystem::path> LinuxSystemInfo::listKeyboards() {
    std::vector<std::filesystem::path> nodes;
    const UdevContext context(udev_new());
    const UdevEnumeration keyboards(context ? udev_enumerate_new(context.get()) : nullptr);
    if (!keyboards)
        return nodes;
    udev_enumerate_add_match_subsystem(keyboards.get(), "input");
    udev_enumerate_add_match_property(keyboards.get(), "ID_INPUT_KEYBOARD", "1");
    udev_enumerate_add_match_sysname(keyboards.get(), "event*");
    forEachUdevDevice(*context, *keyboards, [&nodes](udev_device& device) {
        if (const char* node = udev_device_get_devnode(&device))
            nodes.emplace_back(node);
    });
    return nodes;
}

} // namespace quorvane
