#pragma once

#include <filesystem>
#include <memory>

#include "platform/HID.h"

namespace quorvane {

class HIDFinder;
class HIDSearch;

/// Apple's HID devices through hidraw. Matching a vendor without a product also finds, after those,
/// the lid angle channels of the industrial-I/O subsystem, where notebooks of other makers have the
/// sensor. A device that is unplugged and comes again, which udev says, stays the same object and
/// gives reports again.
///
/// A thread looks for the devices, and each device has one that reads it (`ThreadedHIDDevice`).
/// `copyDevices` waits until the first one has looked again, a few milliseconds, and no longer than
/// 0.25 s in all if that is stuck in the system: then the devices are those of the time before.
class LinuxHID final : public HIDService {
public:
    /// `sysfs`: where to look for industrial-I/O devices. Begins to look, and to read what is
    /// there, so that the first answers have come when they are asked for.
    explicit LinuxHID(const std::filesystem::path& sysfs = "/sys");
    /// On the devices that `finder` finds.
    explicit LinuxHID(std::unique_ptr<HIDFinder> finder);
    /// Does not wait for the threads.
    ~LinuxHID() override;

    std::shared_ptr<HIDManager> createManager() override;

private:
    // Shared with its thread and with the managers.
    const std::shared_ptr<HIDSearch> m_search;
};

} // namespace quorvane
