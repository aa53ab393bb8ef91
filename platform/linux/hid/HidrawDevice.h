#pragma once

#include <filesystem>

#include "platform/HID.h"

namespace quorvane {

/// The two numbers that name a kind of HID device.
struct HIDIdentity {
    int vendorID = 0;
    int productID = 0;

    bool operator==(const HIDIdentity&) const = default;
};

/// A HID device behind a hidraw node. Failures are errno values.
class HidrawDevice final : public HIDDevice {
public:
    /// `node` as the kernel names it ("/dev/hidraw3"), `identity` as the device was found under.
    HidrawDevice(std::filesystem::path node, HIDIdentity identity);
    ~HidrawDevice() override;

    /// A node that may only be read will do: feature reports need no more. Fails with ENODEV when
    /// the node has meanwhile become another device's.
    HIDResult open() override;
    /// Feature reports only; anything else is ENOTSUP. Waits for the device's answer, which the
    /// kernel gives up on after some seconds.
    HIDResult getReport(HIDReportType type, std::uint8_t reportID, std::span<std::uint8_t> buffer,
                        std::size_t& length) override;
    [[nodiscard]] std::optional<int> integerProperty(std::string_view key) const override;

private:
    void close();

    std::filesystem::path m_node;
    HIDIdentity m_identity;
    int m_descriptor = -1;
    bool m_gone = false;
};

} // namespace quorvane
