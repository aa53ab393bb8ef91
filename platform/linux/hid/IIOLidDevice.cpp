#include "platform/linux/hid/IIOLidDevice.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <limits>
#include <numbers>
#include <utility>

#include "platform/linux/common/SysfsText.h"

namespace quorvane {

namespace {

constexpr std::uint8_t lidReportID = 1;
constexpr double largestAngle = std::numeric_limits<std::uint16_t>::max();
// What the Chrome EC answers while its accelerometers cannot tell.
constexpr double unreliableDegrees = 500;
constexpr double degreesPerRadian = 180.0 / std::numbers::pi;

} // namespace

IIOLidDevice::IIOLidDevice(IIOLidChannel channel) : m_channel(std::move(channel)) {}

HIDResult IIOLidDevice::open() {
    if (m_channel.unit == IIOLidUnit::Radians) {
        const auto scale = readSystemNumber(m_channel.scale);
        if (!scale)
            return ENODATA;
        m_scale = *scale * degreesPerRadian;
        m_offset = readSystemNumber(m_channel.offset).value_or(0);
    }
    if (!readSystemText(m_channel.raw))
        return ENODEV;
    m_open = true;
    return hidSuccess;
}

HIDResult IIOLidDevice::getReport(HIDReportType type, std::uint8_t reportID,
                                  std::span<std::uint8_t> buffer, std::size_t& length) {
    if (type != HIDReportType::Feature || reportID != lidReportID)
        return ENOTSUP;
    if (!m_open)
        return ENODEV;
    const auto reading = degrees();
    if (!reading || *reading < 0 || *reading > largestAngle)
        return EIO;
    const int angle = static_cast<int>(*reading);
    if (isLoneZero(angle))
        return EIO;
    const std::array report{lidReportID, static_cast<std::uint8_t>(angle & 0xFF),
                            static_cast<std::uint8_t>(angle >> 8)};
    length = std::min({length, buffer.size(), report.size()});
    std::copy_n(report.begin(), length, buffer.begin());
    return hidSuccess;
}

std::optional<int> IIOLidDevice::integerProperty(std::string_view) const {
    return std::nullopt;
}

/// Rounded; none when there is no reading to trust.
std::optional<double> IIOLidDevice::degrees() const {
    const auto raw = readSystemNumber(m_channel.raw);
    if (!raw || (m_channel.unit == IIOLidUnit::Degrees && *raw == unreliableDegrees))
        return std::nullopt;
    return std::round((*raw + m_offset) * m_scale);
}

/// Drivers are known to slip in a single zero between good readings. Whether it is a slip shows
/// only afterwards, so the first zero after another angle is not believed and the next one is.
bool IIOLidDevice::isLoneZero(int angle) {
    const bool lastWasZero = std::exchange(m_lastWasZero, angle == 0);
    return angle == 0 && !lastWasZero;
}

} // namespace quorvane
