#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/HID.h"
#include "platform/linux/common/FileDescriptor.h"

struct udev;

namespace quorvane {

/// Vendor and product of a HID device.
struct HIDIdentity {
    int vendorID = 0;
    int productID = 0;

    bool operator==(const HIDIdentity&) const = default;
};

/// A hidraw node and the device behind it.
struct HidrawNode {
    std::filesystem::path node;
    /// The number in the node's name.
    int number = 0;
    HIDIdentity identity;
    /// The device's identity, port and serial number: the same when it is plugged in again.
    std::string name;
    /// Where sysfs has the node: another one whenever the device is plugged in.
    std::string place;

    bool operator==(const HidrawNode&) const = default;
};

/// Reads a HID_ID property, "0003:000005AC:00008104" (bus, vendor, product, hexadecimal).
[[nodiscard]] std::optional<HIDIdentity> parseHIDID(std::string_view text);

/// All hidraw nodes of the machine, in no particular order.
[[nodiscard]] std::vector<HidrawNode> listHidrawNodes(udev& context);

/// Those of a vendor, hidraw2 before hidraw10.
[[nodiscard]] std::vector<HidrawNode> nodesOfVendor(std::vector<HidrawNode> nodes, int vendorID);

/// A HID device behind a hidraw node. Failures are errno values. Not through libhidapi, which does
/// not return those, nor check that a node still belongs to the device that was listed.
class HidrawDevice final : public HIDDevice {
public:
    /// `node`: "/dev/hidraw3"; `identity`: what it was listed with.
    HidrawDevice(std::filesystem::path node, HIDIdentity identity);

    /// A read-only node will do: reading feature reports needs no more. ENODEV when the node
    /// meanwhile belongs to another device.
    HIDResult open() override;
    /// Feature reports only; anything else is ENOTSUP. Blocks until the device answers or, after
    /// some seconds, the kernel times out.
    HIDResult getReport(HIDReportType type, std::uint8_t reportID, std::span<std::uint8_t> buffer,
                        std::size_t& length) override;
    [[nodiscard]] std::optional<int> integerProperty(std::string_view key) const override;

private:
    std::filesystem::path m_node;
    HIDIdentity m_identity;
    FileDescriptor m_descriptor;
    bool m_gone = false;
};

} // namespace quorvane
