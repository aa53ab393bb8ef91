#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

#include "base/NonCopyable.h"

struct ff_effect;

namespace quorvane {

/// The kernel's FF_HAPTIC, which its headers have only since Linux 6.18.
inline constexpr int hapticEffectType = 0x4F;

/// How a device makes a pulse.
enum class HapticKind {
    /// A touchpad that simulates clicks, also on request.
    Touchpad,
    /// Rumble motors.
    Rumble,
};

/// An input device with force feedback.
struct HapticNode {
    std::filesystem::path node;
    /// The number in the node's name.
    int number = 0;
    HapticKind kind = HapticKind::Rumble;

    bool operator==(const HapticNode&) const = default;
};

/// An open device with force feedback; each method is one call of the kernel. Closed with the
/// object. One thread at a time.
class ForceFeedbackPort : NonCopyable {
public:
    virtual ~ForceFeedbackPort() = default;

    /// The effect's id on the device; none when the device refuses it. May block.
    virtual std::optional<int> upload(const ff_effect& effect) = 0;
    /// May block.
    virtual void erase(int effect) = 0;
    /// Plays an effect once, from its beginning; never blocks. False: the device is gone.
    virtual bool play(int effect) = 0;
};

/// The machine's devices with force feedback. Any thread, one at a time.
class ForceFeedbackDevices : NonCopyable {
public:
    virtual ~ForceFeedbackDevices() = default;

    /// The devices that exist now, in no particular order.
    virtual std::vector<HapticNode> list() = 0;
    /// Null when it cannot be opened or is no longer what it was listed as.
    virtual std::unique_ptr<ForceFeedbackPort> open(const HapticNode& node) = 0;
};

} // namespace quorvane
