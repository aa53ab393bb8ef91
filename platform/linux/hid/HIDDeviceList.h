#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/ThreadedHIDDevice.h"

namespace quorvane {

/// A device that a search found.
struct FoundHIDDevice {
    /// The same when the device is plugged in again.
    std::string name;
    /// Where it is now; empty for a device that is not plugged in.
    std::string place;
    ThreadedHIDDevice::Make make;
};

/// The devices of the machine, from one search to the next. One that goes and comes again stays the
/// same object if anybody has kept it.
class HIDDeviceList {
public:
    /// Takes over the result of a search.
    void update(const std::vector<FoundHIDDevice>& found);

    /// The devices that are plugged in, in the order of the last search.
    [[nodiscard]] std::vector<std::shared_ptr<ThreadedHIDDevice>> present() const;

private:
    struct Known {
        std::string name;
        std::string place;
        std::shared_ptr<ThreadedHIDDevice> device;
    };

    [[nodiscard]] Known take(const FoundHIDDevice& found);

    // Those that are plugged in, then those that are not.
    std::vector<Known> m_known;
};

} // namespace quorvane
