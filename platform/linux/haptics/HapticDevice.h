#pragma once

#include <array>
#include <memory>
#include <optional>

#include "base/NonCopyable.h"
#include "platform/Haptics.h"
#include "platform/linux/haptics/ForceFeedback.h"

namespace quorvane {

/// A device that is ready to pulse: opened, with an effect for each pattern on it. They are erased
/// and it is closed with the object, which may wait for the device.
class HapticDevice : NonCopyable {
public:
    /// The first of `devices`, by suitability, that can be opened and takes our effects; null when
    /// there is none. May wait for the devices.
    [[nodiscard]] static std::unique_ptr<HapticDevice> openBest(ForceFeedbackDevices& devices);

    ~HapticDevice();

    /// One pulse; never waits. False: the device has gone.
    bool play(HapticPattern pattern);

private:
    explicit HapticDevice(std::unique_ptr<ForceFeedbackPort> port) : m_port(std::move(port)) {}

    bool upload(HapticKind kind);

    std::unique_ptr<ForceFeedbackPort> m_port;
    // By pattern; none where the device had no room left.
    std::array<std::optional<int>, 3> m_effects;
};

} // namespace quorvane
