#include "platform/linux/hid/IIOLidScan.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <string>
#include <string_view>
#include <system_error>
#include <tuple>
#include <utility>

#include "platform/linux/common/SysfsText.h"
#include "platform/linux/hid/IIOLidDevice.h"

namespace quorvane {

namespace {

namespace fs = std::filesystem;

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

/// Lower case, every separator an underscore and one at either end: words are then found whole.
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

/// The names in `folder` with these ends, in the order of the numbers in them.
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
    // Without a scale there is nothing to make radians of: such a channel gives degrees, as the
    // Chrome EC's does. The hinge device always scales, so one without is broken.
    if (isHinge || (!isChromeEC && fs::exists(found.scale, error)))
        found.unit = IIOLidUnit::Radians;
    return found;
}

} // namespace

std::vector<std::shared_ptr<HIDDevice>> findIIOLids(const fs::path& sysfs) {
    std::vector<std::shared_ptr<HIDDevice>> lids;
    const fs::path folder = sysfs / "bus/iio/devices";
    for (const std::string& entry : numberedEntries(folder, devicePrefix, "")) {
        const fs::path device = folder / entry;
        const std::string name = readSystemText(device / "name").value_or("");
        for (const std::string& raw : numberedEntries(device, channelPrefix, rawSuffix)) {
            if (auto channel = lidChannel(device, name, raw))
                lids.push_back(std::make_shared<IIOLidDevice>(std::move(*channel)));
        }
    }
    return lids;
}

} // namespace quorvane
