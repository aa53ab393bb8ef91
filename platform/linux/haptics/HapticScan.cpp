#include "platform/linux/haptics/HapticScan.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cstdlib>
#include <linux/input.h>
#include <tuple>

#include "platform/linux/common/Udev.h"
#include "platform/linux/haptics/HapticEffects.h"

namespace quorvane {

namespace {

constexpr std::size_t bitsPerWord = sizeof(long) * CHAR_BIT;

bool hasBit(std::span<const unsigned long> bits, std::size_t number) {
    const std::size_t word = number / bitsPerWord;
    return word < bits.size() && ((bits[word] >> (number % bitsPerWord)) & 1U) != 0;
}

std::optional<HapticNode> readNode(udev_device& device) {
    const char* node = udev_device_get_devnode(&device);
    const char* number = udev_device_get_sysnum(&device);
    // Belongs to its child, so it is not released.
    udev_device* parent = udev_device_get_parent_with_subsystem_devtype(&device, "input", nullptr);
    const char* bits = parent ? udev_device_get_sysattr_value(parent, "capabilities/ff") : nullptr;
    const auto kind = bits ? hapticKind(std::string_view(bits)) : std::nullopt;
    if (!node || !number || !kind)
        return std::nullopt;
    return HapticNode{
        .node = node, .number = static_cast<int>(std::strtol(number, nullptr, 10)), .kind = *kind};
}

} // namespace

std::optional<HapticKind> hapticKind(std::span<const unsigned long> bits) {
    if (hasBit(bits, hapticEffectType))
        return HapticKind::Touchpad;
    if (hasBit(bits, FF_RUMBLE))
        return HapticKind::Rumble;
    return std::nullopt;
}

std::optional<HapticKind> hapticKind(std::string_view text) {
    std::vector<unsigned long> words;
    const char* at = text.data();
    const char* const end = at + text.size();
    for (;;) {
        unsigned long word = 0;
        at = std::find_if(at, end, [](char character) { return character != ' '; });
        const auto [stop, error] = std::from_chars(at, end, word, 16);
        if (error != std::errc())
            break;
        words.insert(words.begin(), word);
        at = stop;
    }
    return hapticKind(words);
}

std::vector<HapticNode> listHapticNodes(udev& context) {
    return readUdevDevices(context, "input", "event*", readNode);
}

void sortBySuitability(std::vector<HapticNode>& nodes) {
    std::sort(nodes.begin(), nodes.end(), [](const HapticNode& left, const HapticNode& right) {
        return std::tie(left.kind, left.number) < std::tie(right.kind, right.number);
    });
}

} // namespace quorvane
