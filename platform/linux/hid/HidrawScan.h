#pragma once

#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/linux/hid/HidrawDevice.h"

struct udev;

namespace quorvane {

/// A hidraw node and the device behind it.
struct HidrawNode {
    std::filesystem::path node;
    /// The number in the node's name.
    int number = 0;
    HIDIdentity identity;

    bool operator==(const HidrawNode&) const = default;
};

/// Reads a HID_ID property, "0003:000005AC:00008104" (bus, vendor, product, hexadecimal).
[[nodiscard]] std::optional<HIDIdentity> parseHIDID(std::string_view text);

/// All hidraw nodes of the machine, in no particular order.
[[nodiscard]] std::vector<HidrawNode> listHidrawNodes(udev& context);

/// Those that match, hidraw2 before hidraw10.
[[nodiscard]] std::vector<HidrawNode> matchingNodes(std::vector<HidrawNode> nodes,
                                                    const HIDMatching& matching);

} // namespace quorvane
