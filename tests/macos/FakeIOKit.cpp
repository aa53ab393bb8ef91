#include <IOKit/hid/IOHIDLib.h>

#include <algorithm>
#include <map>

#include "tests/macos/FakeObjects.h"

namespace quorvane::fakes {

namespace {

constexpr IOReturn noDevice = static_cast<IOReturn>(0xE00002C0);
constexpr IOReturn unsupported = static_cast<IOReturn>(0xE00002C7);

struct DeviceObject final : Object {
    explicit DeviceObject(std::shared_ptr<Device> ofThis) : device(std::move(ofThis)) {}

    ~DeviceObject() override {
        for (const auto& [key, property] : properties)
            CFRelease(reference<CFTypeRef>(property));
    }

    [[nodiscard]] std::string type() const override { return "IOHIDDevice"; }

    std::shared_ptr<Device> device;
    // Owned by the device, as in the system.
    std::map<std::string, Object*> properties;
};

struct ManagerObject final : Object {
    [[nodiscard]] std::string type() const override { return "IOHIDManager"; }

    std::map<std::string, int> matching;
    bool opened = false;
};

bool matches(const Device& device, const std::map<std::string, int>& matching) {
    return device.pluggedIn &&
           std::all_of(matching.begin(), matching.end(), [&](const auto& wanted) {
               const auto found = device.integers.find(wanted.first);
               return found != device.integers.end() && found->second == wanted.second;
           });
}

Object* makeProperty(const Device& device, const std::string& key) {
    if (const auto found = device.integers.find(key); found != device.integers.end())
        return new Number(found->second);
    if (const auto found = device.texts.find(key); found != device.texts.end())
        return new String(found->second);
    return nullptr;
}

} // namespace

} // namespace quorvane::fakes

using namespace quorvane::fakes;

extern "C" {

IOHIDManagerRef IOHIDManagerCreate(CFAllocatorRef, IOOptionBits options) {
    call("IOHIDManagerCreate(" + std::to_string(options) + ")");
    return reference<IOHIDManagerRef>(new ManagerObject);
}

void IOHIDManagerSetDeviceMatching(IOHIDManagerRef manager, CFDictionaryRef matching) {
    call("IOHIDManagerSetDeviceMatching(" + describe(matching) + ")");
    auto* known = checked<ManagerObject>(manager, "IOHIDManagerSetDeviceMatching");
    const auto* wanted = checked<Dictionary>(matching, "IOHIDManagerSetDeviceMatching");
    if (!known || !wanted)
        return;
    known->matching.clear();
    for (const auto& [key, value] : wanted->entries)
        known->matching[checked<String>(key, "matching")->text] =
            checked<Number>(value, "matching")->value;
}

void IOHIDManagerScheduleWithRunLoop(IOHIDManagerRef manager, CFRunLoopRef runLoop,
                                     CFStringRef mode) {
    call("IOHIDManagerScheduleWithRunLoop(" + describe(runLoop) + ", " + describe(mode) + ")");
    checked<ManagerObject>(manager, "IOHIDManagerScheduleWithRunLoop");
}

IOReturn IOHIDManagerOpen(IOHIDManagerRef manager, IOOptionBits options) {
    call("IOHIDManagerOpen(" + std::to_string(options) + ")");
    if (auto* known = checked<ManagerObject>(manager, "IOHIDManagerOpen"))
        known->opened = machine().managerOpenResult == kIOReturnSuccess;
    return machine().managerOpenResult;
}

IOReturn IOHIDManagerClose(IOHIDManagerRef manager, IOOptionBits options) {
    call("IOHIDManagerClose(" + std::to_string(options) + ")");
    auto* known = checked<ManagerObject>(manager, "IOHIDManagerClose");
    if (!known || !known->opened)
        return kIOReturnNotOpen;
    known->opened = false;
    return kIOReturnSuccess;
}

CFSetRef IOHIDManagerCopyDevices(IOHIDManagerRef manager) {
    call("IOHIDManagerCopyDevices");
    const auto* known = checked<ManagerObject>(manager, "IOHIDManagerCopyDevices");
    if (!known || machine().noDeviceSet)
        return nullptr;
    auto* set = new Set;
    for (const auto& device : machine().devices)
        if (matches(*device, known->matching))
            set->members.push_back(new DeviceObject(device));
    return reference<CFSetRef>(set);
}

IOReturn IOHIDDeviceOpen(IOHIDDeviceRef device, IOOptionBits options) {
    call("IOHIDDeviceOpen(" + std::to_string(options) + ")");
    const auto* known = checked<DeviceObject>(device, "IOHIDDeviceOpen");
    return known && known->device->pluggedIn ? known->device->openResult : noDevice;
}

// As the real one, also reads a device that only its manager has opened.
IOReturn IOHIDDeviceGetReport(IOHIDDeviceRef device, IOHIDReportType type, CFIndex reportID,
                              std::uint8_t* report, CFIndex* length) {
    call("IOHIDDeviceGetReport(" + std::to_string(type) + ", " + std::to_string(reportID) + ", " +
         std::to_string(*length) + ")");
    const auto* known = checked<DeviceObject>(device, "IOHIDDeviceGetReport");
    if (!known || !known->device->pluggedIn)
        return noDevice;
    if (type != kIOHIDReportTypeFeature || reportID != 1)
        return unsupported;
    if (known->device->readResult != kIOReturnSuccess) {
        // The real value is not documented.
        *length = 0;
        return known->device->readResult;
    }
    const auto& bytes = known->device->report;
    *length = std::min(*length, static_cast<CFIndex>(bytes.size()));
    std::copy_n(bytes.begin(), *length, report);
    return kIOReturnSuccess;
}

CFTypeRef IOHIDDeviceGetProperty(IOHIDDeviceRef device, CFStringRef key) {
    auto* known = checked<DeviceObject>(device, "IOHIDDeviceGetProperty");
    const auto* name = checked<String>(key, "IOHIDDeviceGetProperty");
    if (!known || !name)
        return nullptr;
    Object*& property = known->properties[name->text];
    if (!property)
        property = makeProperty(*known->device, name->text);
    if (property)
        return reference<CFTypeRef>(property);
    known->properties.erase(name->text);
    return nullptr;
}

} // extern "C"
