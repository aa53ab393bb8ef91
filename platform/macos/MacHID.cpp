#include "platform/macos/MacHID.h"

#include <IOKit/hid/IOHIDLib.h>

#include <algorithm>
#include <array>
#include <utility>

#include "platform/macos/CFRef.h"

namespace quorvane {

namespace {

static_assert(hidSuccess == kIOReturnSuccess);
static_assert(static_cast<int>(HIDReportType::Input) == kIOHIDReportTypeInput);
static_assert(static_cast<int>(HIDReportType::Output) == kIOHIDReportTypeOutput);
static_assert(static_cast<int>(HIDReportType::Feature) == kIOHIDReportTypeFeature);

CFRef<CFNumberRef> number(int value) {
    return CFRef<CFNumberRef>::owned(CFNumberCreate(kCFAllocatorDefault, kCFNumberIntType, &value));
}

CFRef<CFDictionaryRef> dictionary(const HIDMatching& matching) {
    const auto vendor = number(matching.vendorID);
    const auto product = number(matching.productID.value_or(0));
    std::array<const void*, 2> keys{CFSTR(kIOHIDVendorIDKey), CFSTR(kIOHIDProductIDKey)};
    std::array<const void*, 2> values{vendor.get(), product.get()};
    return CFRef<CFDictionaryRef>::owned(CFDictionaryCreate(
        kCFAllocatorDefault, keys.data(), values.data(), matching.productID ? 2 : 1,
        &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
}

class MacHIDDevice final : public HIDDevice {
public:
    explicit MacHIDDevice(IOHIDDeviceRef device)
        : m_device(CFRef<IOHIDDeviceRef>::shared(device)) {}

    HIDResult open() override {
        if (m_opened)
            return hidSuccess;
        const IOReturn result = IOHIDDeviceOpen(m_device.get(), kIOHIDOptionsTypeNone);
        m_opened = result == kIOReturnSuccess;
        return result;
    }

    HIDResult getReport(HIDReportType type, std::uint8_t reportID, std::span<std::uint8_t> buffer,
                        std::size_t& length) override {
        // IOKit would also read a device that only its manager has opened.
        if (!m_opened)
            return kIOReturnNotOpen;
        auto received = static_cast<CFIndex>(std::min(length, buffer.size()));
        const IOReturn result = IOHIDDeviceGetReport(
            m_device.get(), static_cast<IOHIDReportType>(type), reportID, buffer.data(), &received);
        if (result == kIOReturnSuccess)
            length = static_cast<std::size_t>(received);
        return result;
    }

    [[nodiscard]] std::optional<int> integerProperty(std::string_view key) const override {
        const auto name = CFRef<CFStringRef>::owned(
            CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(key.data()),
                                    static_cast<CFIndex>(key.size()), kCFStringEncodingUTF8, 0));
        if (!name)
            return std::nullopt;
        const CFTypeRef property = IOHIDDeviceGetProperty(m_device.get(), name.get());
        if (!property || CFGetTypeID(property) != CFNumberGetTypeID())
            return std::nullopt;
        int value = 0;
        if (!CFNumberGetValue(static_cast<CFNumberRef>(property), kCFNumberIntType, &value))
            return std::nullopt;
        return value;
    }

private:
    CFRef<IOHIDDeviceRef> m_device;
    bool m_opened = false;
};

class MacHIDManager final : public HIDManager {
public:
    void setDeviceMatching(const HIDMatching& matching) override {
        IOHIDManagerSetDeviceMatching(m_manager.get(), dictionary(matching).get());
    }

    void scheduleWithRunLoop() override {
        IOHIDManagerScheduleWithRunLoop(m_manager.get(), CFRunLoopGetCurrent(),
                                        kCFRunLoopDefaultMode);
    }

    HIDResult open() override { return IOHIDManagerOpen(m_manager.get(), kIOHIDOptionsTypeNone); }

    std::optional<std::vector<std::shared_ptr<HIDDevice>>> copyDevices() override {
        const auto set = CFRef<CFSetRef>::owned(IOHIDManagerCopyDevices(m_manager.get()));
        if (!set)
            return std::nullopt;
        std::vector<const void*> members(static_cast<std::size_t>(CFSetGetCount(set.get())));
        CFSetGetValues(set.get(), members.data());
        std::vector<std::shared_ptr<HIDDevice>> devices;
        devices.reserve(members.size());
        for (const void* member : members)
            devices.push_back(std::make_shared<MacHIDDevice>(
                static_cast<IOHIDDeviceRef>(const_cast<void*>(member))));
        return devices;
    }

    HIDResult close() override { return IOHIDManagerClose(m_manager.get(), kIOHIDOptionsTypeNone); }

private:
    // Released with the manager, which takes it off the run loop; devices may outlive it.
    CFRef<IOHIDManagerRef> m_manager = CFRef<IOHIDManagerRef>::owned(
        IOHIDManagerCreate(kCFAllocatorDefault, kIOHIDOptionsTypeNone));
};

} // namespace

std::shared_ptr<HIDManager> MacHID::createManager() {
    return std::make_shared<MacHIDManager>();
}

} // namespace quorvane
