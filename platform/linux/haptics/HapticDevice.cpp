#include "platform/linux/haptics/HapticDevice.h"

#include <algorithm>
#include <cstring>
#include <tuple>
#include <utility>

namespace quorvane {

namespace {

// The HID usage "click". Never 0x1006 or 0x1007, press and release: a touchpad that gets one of
// those leaves its own clicks to the host from then on.
constexpr std::uint16_t clickWaveform = 0x1003;

/// Magnitudes as in ff_rumble_effect. A motor takes some 20 ms to be felt, and at 25 pulses a
/// second there are 40 ms for each.
struct Rumble {
    std::uint16_t strong;
    std::uint16_t weak;
    std::uint16_t milliseconds;
};

Rumble rumbleOf(HapticPattern pattern) {
    switch (pattern) {
    case HapticPattern::Generic:
        return {.strong = 0, .weak = 0x6000, .milliseconds = 20};
    case HapticPattern::Alignment:
        return {.strong = 0x6000, .weak = 0x9000, .milliseconds = 25};
    case HapticPattern::LevelChange:
        break;
    }
    return {.strong = 0x9000, .weak = 0x4000, .milliseconds = 25};
}

std::uint16_t clickIntensity(HapticPattern pattern) {
    switch (pattern) {
    case HapticPattern::Generic:
        return 50;
    case HapticPattern::Alignment:
        return 70;
    case HapticPattern::LevelChange:
        break;
    }
    return 100;
}

} // namespace

ff_effect hapticEffect(HapticKind kind, HapticPattern pattern) {
    ff_effect effect{};
    effect.id = -1;
    if (kind == HapticKind::Touchpad) {
        effect.type = hapticEffectType;
        const HapticEffect click{.hidUsage = clickWaveform, .intensity = clickIntensity(pattern)};
        static_assert(sizeof click == 12 && sizeof click <= sizeof effect.u);
        std::memcpy(&effect.u, &click, sizeof click);
        return effect;
    }
    const Rumble rumble = rumbleOf(pattern);
    effect.type = FF_RUMBLE;
    effect.replay.length = rumble.milliseconds;
    effect.u.rumble = {.strong_magnitude = rumble.strong, .weak_magnitude = rumble.weak};
    return effect;
}

void sortBySuitability(std::vector<HapticNode>& nodes) {
    std::sort(nodes.begin(), nodes.end(), [](const HapticNode& left, const HapticNode& right) {
        return std::tie(left.kind, left.number) < std::tie(right.kind, right.number);
    });
}

std::unique_ptr<HapticDevice> HapticDevice::openBest(ForceFeedbackDevices& devices) {
    auto nodes = devices.list();
    sortBySuitability(nodes);
    for (const HapticNode& node : nodes) {
        auto port = devices.open(node);
        if (!port)
            continue;
        std::unique_ptr<HapticDevice> device(new HapticDevice(std::move(port)));
        if (device->upload(node.kind))
            return device;
    }
    return nullptr;
}

HapticDevice::~HapticDevice() {
    for (const auto& effect : m_effects) {
        if (effect)
            m_port->erase(*effect);
    }
}

bool HapticDevice::play(HapticPattern pattern) {
    std::optional<int> effect = m_effects.at(static_cast<std::size_t>(pattern));
    for (const auto& other : m_effects) {
        if (!effect)
            effect = other;
    }
    return effect && m_port->play(*effect);
}

/// Whether the device accepted at least one effect, which then also serves the patterns that it had
/// no room for.
bool HapticDevice::upload(HapticKind kind) {
    for (const auto pattern :
         {HapticPattern::Alignment, HapticPattern::LevelChange, HapticPattern::Generic})
        m_effects.at(static_cast<std::size_t>(pattern)) =
            m_port->upload(hapticEffect(kind, pattern));
    return std::any_of(m_effects.begin(), m_effects.end(),
                       [](const auto& effect) { return effect.has_value(); });
}

} // namespace quorvane
