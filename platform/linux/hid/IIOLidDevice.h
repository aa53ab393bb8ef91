#pragma once

#include <filesystem>

#include "platform/HID.h"

namespace quorvane {

/// How an industrial-I/O channel tells the angle between lid and base.
enum class IIOLidUnit {
    /// Whole degrees; 500 while the sensor does not trust itself (the Chrome EC's lid angle).
    Degrees,
    /// (raw + offset) times scale gives radians, as the kernel has it for angle channels.
    Radians
};

/// Where a channel's attributes are.
struct IIOLidChannel {
    std::filesystem::path raw;
    std::filesystem::path scale;
    /// May be missing.
    std::filesystem::path offset;
    IIOLidUnit unit = IIOLidUnit::Degrees;
};

/// A lid angle channel of the industrial-I/O subsystem, shown as a HID device whose feature report
/// 1 holds the angle: the report ID, then whole degrees, low byte first. It has no properties:
/// nobody gave it a vendor or a product. Failures are errno values.
class IIOLidDevice final : public HIDDevice {
public:
    explicit IIOLidDevice(IIOLidChannel channel);

    /// Fails when the channel cannot be read or lacks what its unit needs.
    HIDResult open() override;
    HIDResult getReport(HIDReportType type, std::uint8_t reportID, std::span<std::uint8_t> buffer,
                        std::size_t& length) override;
    [[nodiscard]] std::optional<int> integerProperty(std::string_view key) const override;

private:
    [[nodiscard]] std::optional<double> degrees() const;
    bool isLoneZero(int angle);

    IIOLidChannel m_channel;
    double m_scale = 1;
    double m_offset = 0;
    bool m_open = false;
    bool m_lastWasZero = true;
};

} // namespace quorvane
