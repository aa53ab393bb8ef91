#pragma once

#include <array>
#include <cstdint>
#include <linux/input.h>
#include <memory>
#include <optional>
#include <vector>

#include "base/NonCopyable.h"
#include "platform/Haptics.h"
#include "platform/linux/haptics/ForceFeedback.h"

namespace quorvane {

/// The kernel's ff_haptic_effect of Linux 6.18, the effect of a haptic touchpad, which lies in the
/// union of ff_effect.
struct HapticEffect {
    /// A waveform of the haptics page of the HID usage tables.
    std::uint16_t hidUsage = 0;
    std::uint16_t vendorID = 0;
    std::uint8_t vendorWaveformPage = 0;
    /// Percent.
    std::uint16_t intensity = 0;
    std::uint16_t repeatCount = 0;
    /// Milliseconds.
    std::uint16_t retriggerPeriod = 0;
};

/// The effect for a pulse of that pattern, not yet uploaded to a device.
[[nodiscard]] ff_effect hapticEffect(HapticKind kind, HapticPattern pattern);

/// Touchpads before anything else, event2 before event10.
void sortBySuitability(std::vector<HapticNode>& nodes);

/// An open device with an effect uploaded for each pattern. The destructor erases the effects and
/// closes the device, which may block.
class HapticDevice : NonCopyable {
public:
    /// The first of `devices`, by suitability, that can be opened and accepts an effect; null when
    /// there is none. May block.
    [[nodiscard]] static std::unique_ptr<HapticDevice> openBest(ForceFeedbackDevices& devices);

    ~HapticDevice();

    /// One pulse; never blocks. False: the device is gone.
    bool play(HapticPattern pattern);

private:
    explicit HapticDevice(std::unique_ptr<ForceFeedbackPort> port) : m_port(std::move(port)) {}

    bool upload(HapticKind kind);

    std::unique_ptr<ForceFeedbackPort> m_port;
    // By pattern; none where the device had no room left.
    std::array<std::optional<int>, 3> m_effects;
};

} // namespace quorvane
