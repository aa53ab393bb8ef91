#include "platform/linux/hid/IIOLidDevice.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <limits>
#include <numbers>
#include <string>
#include <string_view>
#include <system_error>
#include <tuple>
#include <utility>

#include "platform/linux/common/SysfsText.h"

namespace quorvane {

namespace {

namespace fs = std::filesystem;

constexpr std::uint8_t lidReportID = 1;
constexpr double largestAngle = std::numeric_limits<std::uint16_t>::max();
// The Chrome EC's value for an unreliable reading.
constexpr double unreliableDegrees = 500;
constexpr double degreesPerRadian = 180.0 / std::numbers::pi;

/// The unit of an industrial-I/O channel's lid angle.
enum class IIOLidUnit {
    /// Whole degrees; 500 while the reading is unreliable (the Chrome EC's lid angle).
    Degrees,
    /// (raw + offset) * scale is radians, the kernel's convention for angle channels.
    Radians
};

/// A channel's attribute files.
struct IIOLidChannel {
    fs::path raw;
    fs::path scale;
    /// May be missing.
    fs::path offset;
    IIOLidUnit unit = IIOLidUnit::Degrees;
};

/// One channel, as `findIIOLids` describes it.
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
    [[nodiscard]] bool isGone() const;
    bool isLoneZero(int angle);

    IIOLidChannel m_channel;
    double m_scale = 1;
    double m_offset = 0;
    bool m_open = false;
    bool m_lastWasZero = true;
};

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
    // Also if it is not a number.
    if (!reading || !(*reading >= 0 && *reading <= largestAngle))
        return isGone() ? ENODEV : EIO;
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

/// Rounded; none without a reliable reading.
std::optional<double> IIOLidDevice::degrees() const {
    const auto raw = readSystemNumber(m_channel.raw);
    if (!raw || (m_channel.unit == IIOLidUnit::Degrees && *raw == unreliableDegrees))
        return std::nullopt;
    return std::round((*raw + m_offset) * m_scale);
}

bool IIOLidDevice::isGone() const {
    std::error_code error;
    return !fs::exists(m_channel.raw, error);
}

/// Some drivers report a single zero between good readings. The first zero after another angle
/// therefore counts as a failed reading, a second one as an angle.
bool IIOLidDevice::isLoneZero(int angle) {
    const bool lastWasZero = std::exchange(m_lastWasZero, angle == 0);
    return angle == 0 && !lastWasZero;
}

constexpr std::string_view devicePrefix = "iio:device";
constexpr std::string_view channelPrefix = "in_angl";
constexpr std::string_view rawSuffix = "_raw";

/// The number after `prefix` in `name`, -1 when none follows: sorts "device2" before "device10".
int numberAfter(std::string_view name, std::string_view prefix) {
    int number = -1;
    name.remove_prefix(std::min(name.size(), prefix.size()));
    std::from_chars(name.data(), name.data() + name.size(), number);
    return number;
}

/// In lower case, with underscores for separators and at both ends, to search it for whole words.
std::string words(std::string_view text) {
    std::string result = "_";
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        result += std::isalnum(byte) ? static_cast<char>(std::tolower(byte)) : '_';
    }
    return result + "_";
}

bool namesWord(std::string_view text, std::string_view word) {
    return words(text).find("_" + std::string(word) + "_") != std::string::npos;
}

std::vector<std::string> entries(const fs::path& folder) {
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error))
        names.push_back(it->path().filename().string());
    return names;
}

/// The names in `folder` with this prefix and suffix, sorted by the number after the prefix.
std::vector<std::string> numberedEntries(const fs::path& folder, std::string_view prefix,
                                         std::string_view suffix) {
    std::vector<std::string> names = entries(folder);
    std::erase_if(names, [&](const std::string& name) {
        return !name.starts_with(prefix) || !name.ends_with(suffix);
    });
    std::sort(names.begin(), names.end(), [prefix](const auto& left, const auto& right) {
        return std::tuple(numberAfter(left, prefix), left) <
               std::tuple(numberAfter(right, prefix), right);
    });
    return names;
}

/// An attribute of the channel itself, else the one that all angle channels of the device share.
fs::path attribute(const fs::path& device, std::string_view channel, const std::string& name) {
    fs::path own = device / (std::string(channel) + "_" + name);
    std::error_code error;
    return fs::exists(own, error) ? own : device / (std::string(channelPrefix) + "_" + name);
}

std::optional<IIOLidChannel> lidChannel(const fs::path& device, const std::string& deviceName,
                                        const std::string& rawName) {
    const std::string_view channel =
        std::string_view(rawName).substr(0, rawName.size() - rawSuffix.size());
    const std::string label =
        readSystemText(device / (std::string(channel) + "_label")).value_or("");
    const bool isHinge = label == "hinge";
    if (!isHinge && !namesWord(deviceName, "lid") && !namesWord(label, "lid"))
        return std::nullopt;
    IIOLidChannel found{.raw = device / rawName,
                        .scale = attribute(device, channel, "scale"),
                        .offset = attribute(device, channel, "offset")};
    std::error_code error;
    const bool isChromeEC = namesWord(deviceName, "cros_ec_lid_angle");
    // A channel without a scale gives degrees, as the Chrome EC's does. A hinge always has a scale;
    // one without fails to open.
    if (isHinge || (!isChromeEC && fs::exists(found.scale, error)))
        found.unit = IIOLidUnit::Radians;
    return found;
}

} // namespace

std::vector<FoundHIDDevice> findIIOLids(const fs::path& sysfs) {
    std::vector<FoundHIDDevice> lids;
    const fs::path folder = sysfs / "bus/iio/devices";
    for (const std::string& entry : numberedEntries(folder, devicePrefix, "")) {
        const fs::path device = folder / entry;
        const std::string name = readSystemText(device / "name").value_or("");
        for (const std::string& raw : numberedEntries(device, channelPrefix, rawSuffix)) {
            if (const auto channel = lidChannel(device, name, raw))
                lids.push_back(
                    {.name = (name + " ").append(raw),
                     .place = channel->raw,
                     .make = [found = *channel] { return std::make_shared<IIOLidDevice>(found); }});
        }
    }
    return lids;
}

} // namespace quorvane
