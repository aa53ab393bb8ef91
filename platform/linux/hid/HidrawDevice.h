#pragma once

#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/HID.h"
#include "platform/linux/common/FileDescriptor.h"

struct udev;

namespace quorvane {

/// The two numbers that name a kind of HID device.
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

    bool operator==(const HidrawNode&) const = default;
};

/// Reads a HID_ID property, "0003:000005AC:00008104" (bus, vendor, product, hexadecimal).
[[nodiscard]] std::optional<HIDIdentity> parseHIDID(std::string_view text);

/// All hidraw nodes of the machine, in no particular order.
[[nodiscard]] std::vector<HidrawNode> listHidrawNodes(udev& context);

/// Those that match, hidraw2 before hidraw10.
[[nodiscard]] std::vector<HidrawNode> matchingNodes(std::vector<HidrawNode> nodes,
                                                    const HIDMatching& matching);

/// A HID device behind a hidraw node. Failures are errno values.
class HidrawDevice final : public HIDDevice {
public:
    /// `node` as the kernel names it ("/dev/hidraw3"), `identity` as the device was found under.
    HidrawDevice(std::filesystem::path node, HIDIdentity identity);

    /// A node that may only be read will do: feature reports need no more. Fails with ENODEV when
    /// the node has meanwhile become another device's.
    HIDResult open() override;
    /// Feature reports only; anything else is ENOTSUP. Waits for the device's answer, which the
    /// kernel gives up on after some seconds.
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
