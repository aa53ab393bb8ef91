#pragma once

#include <libudev.h>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "platform/linux/common/ReleasedBy.h"

namespace quorvane {

using UdevContext = std::unique_ptr<udev, ReleasedBy<udev_unref>>;
using UdevEnumeration = std::unique_ptr<udev_enumerate, ReleasedBy<udev_enumerate_unref>>;
using UdevDevice = std::unique_ptr<udev_device, ReleasedBy<udev_device_unref>>;

/// Runs an enumeration whose matches are set, and calls `visit` with each device that still exists.
template <typename Visit>
void forEachUdevDevice(udev& context, udev_enumerate& enumeration, const Visit& visit) {
    if (udev_enumerate_scan_devices(&enumeration) < 0)
        return;
    for (udev_list_entry* entry = udev_enumerate_get_list_entry(&enumeration); entry;
         entry = udev_list_entry_get_next(entry)) {
        const UdevDevice device(
            udev_device_new_from_syspath(&context, udev_list_entry_get_name(entry)));
        if (device)
            visit(*device);
    }
}

/// Calls `read` with each device of `subsystem` whose kernel name matches the glob pattern `name`,
/// and returns the results that are not empty.
template <typename Node>
[[nodiscard]] std::vector<Node> readUdevDevices(udev& context, const char* subsystem,
                                                const char* name,
                                                std::optional<Node> (*read)(udev_device&)) {
    std::vector<Node> nodes;
    const UdevEnumeration enumeration(udev_enumerate_new(&context));
    if (!enumeration || udev_enumerate_add_match_subsystem(enumeration.get(), subsystem) < 0 ||
        udev_enumerate_add_match_sysname(enumeration.get(), name) < 0)
        return nodes;
    forEachUdevDevice(context, *enumeration, [&nodes, read](udev_device& device) {
        if (auto node = read(device))
            nodes.push_back(std::move(*node));
    });
    return nodes;
}

} // namespace quorvane
