#include "platform/linux/hid/HidrawScan.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <utility>

#include "platform/linux/common/Udev.h"

namespace quorvane {

namespace {

std::optional<int> parseHexadecimal(std::string_view text) {
    int value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value, 16);
    if (text.empty() || error != std::errc() || stop != end || value < 0)
        return std::nullopt;
    return value;
}

std::optional<HidrawNode> readNode(udev_device& device) {
    const char* node = udev_device_get_devnode(&device);
    const char* number = udev_device_get_sysnum(&device);
    // Belongs to its child, so it is not released.
    udev_device* parent = udev_device_get_parent_with_subsystem_devtype(&device, "hid", nullptr);
    const char* id = parent ? udev_device_get_property_value(parent, "HID_ID") : nullptr;
    const auto identity = id ? parseHIDID(id) : std::nullopt;
    if (!node || !number || !identity)
        return std::nullopt;
    return HidrawNode{.node = node,
                      .number = static_cast<int>(std::strtol(number, nullptr, 10)),
                      .identity = *identity};
}

} // namespace

std::optional<HIDIdentity> parseHIDID(std::string_view text) {
    const auto first = text.find(':');
    const auto second = text.find(':', first == std::string_view::npos ? first : first + 1);
    if (second == std::string_view::npos)
        return std::nullopt;
    const auto vendor = parseHexadecimal(text.substr(first + 1, second - first - 1));
    const auto product = parseHexadecimal(text.substr(second + 1));
    if (!vendor || !product)
        return std::nullopt;
    return HIDIdentity{.vendorID = *vendor, .productID = *product};
}

std::vector<HidrawNode> listHidrawNodes(udev& context) {
    return readUdevDevices(context, "hidraw", "*", readNode);
}

std::vector<HidrawNode> matchingNodes(std::vector<HidrawNode> nodes, const HIDMatching& matching) {
    std::erase_if(nodes, [&matching](const HidrawNode& node) {
        return node.identity.vendorID != matching.vendorID ||
               (matching.productID && node.identity.productID != *matching.productID);
    });
    std::sort(nodes.begin(), nodes.end(),
              [](const auto& left, const auto& right) { return left.number < right.number; });
    return nodes;
}

} // namespace quorvane
