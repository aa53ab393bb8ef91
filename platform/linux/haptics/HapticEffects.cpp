#include "platform/linux/haptics/HapticEffects.h"

#include <cstring>

namespace quorvane {

namespace {

// Never 0x1006 and 0x1007, press and release: a touchpad that is given one of those leaves its own
// clicks to the host from then on.
constexpr std::uint16_t clickWaveform = 0x1003;

/// A motor takes some 20 ms to be felt, and 25 pulses a second leave 40 from one to the next.
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

} // namespace quorvane
