#pragma once

#include <libudev.h>
#include <memory>

namespace quorvane {

template <auto Release>
struct UdevRelease {
    template <typename Handle>
    void operator()(Handle* handle) const {
        Release(handle);
    }
};

using UdevContext = std::unique_ptr<udev, UdevRelease<udev_unref>>;
using UdevEnumeration = std::unique_ptr<udev_enumerate, UdevRelease<udev_enumerate_unref>>;
using UdevDevice = std::unique_ptr<udev_device, UdevRelease<udev_device_unref>>;

/// Runs the enumeration, which has its matches already, and shows `visit` each device that is
/// still there.
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

} // namespace quorvane
