#include "platform/linux/haptics/EvdevForceFeedback.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <linux/input.h>
#include <sys/ioctl.h>
#include <utility>

#include "platform/linux/common/FileDescriptor.h"
#include "platform/linux/common/Udev.h"

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
    // Owned by `device`: not to be released.
    udev_device* parent = udev_device_get_parent_with_subsystem_devtype(&device, "input", nullptr);
    const char* bits = parent ? udev_device_get_sysattr_value(parent, "capabilities/ff") : nullptr;
    const auto kind = bits ? hapticKind(std::string_view(bits)) : std::nullopt;
    if (!node || !number || !kind)
        return std::nullopt;
    return HapticNode{
        .node = node, .number = static_cast<int>(std::strtol(number, nullptr, 10)), .kind = *kind};
}

class EvdevPort final : public ForceFeedbackPort {
public:
    explicit EvdevPort(FileDescriptor descriptor) : m_descriptor(std::move(descriptor)) {}

    std::optional<int> upload(const ff_effect& effect) override {
        ff_effect uploaded = effect;
        if (ioctl(m_descriptor.get(), EVIOCSFF, &uploaded) < 0)
            return std::nullopt;
        return uploaded.id;
    }

    void erase(int effect) override { ioctl(m_descriptor.get(), EVIOCRMFF, effect); }

    bool play(int effect) override {
        input_event event{};
        event.type = EV_FF;
        event.code = static_cast<std::uint16_t>(effect);
        event.value = 1;
        return write(m_descriptor.get(), &event, sizeof event) >= 0 || errno == EAGAIN ||
               errno == EINTR;
    }

private:
    FileDescriptor m_descriptor;
};

/// Node numbers are reused, so the node may belong to another device by now.
bool isStill(int descriptor, HapticKind kind) {
    std::array<unsigned long, FF_MAX / bitsPerWord + 1> bits{};
    if (ioctl(descriptor, EVIOCGBIT(EV_FF, sizeof bits), bits.data()) < 0)
        return false;
    return hapticKind(bits) == kind;
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

std::vector<HapticNode> EvdevForceFeedback::list() {
    const UdevContext context(udev_new());
    return context ? readUdevDevices(*context, "input", "event*", readNode)
                   : std::vector<HapticNode>();
}

std::unique_ptr<ForceFeedbackPort> EvdevForceFeedback::open(const HapticNode& node) {
    // Write-only, so that this process never receives the device's input events.
    auto descriptor = FileDescriptor::open(node.node, O_WRONLY | O_NONBLOCK | O_NOCTTY);
    if (!descriptor || !isStill(descriptor.get(), node.kind))
        return nullptr;
    return std::make_unique<EvdevPort>(std::move(descriptor));
}

} // namespace quorvane
