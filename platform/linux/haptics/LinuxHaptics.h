#pragma once

#include <QTimer>
#include <memory>

#include "platform/Haptics.h"
#include "platform/linux/haptics/ForceFeedback.h"

namespace quorvane {

/// Pulses on a device with force feedback: a haptic touchpad if there is one, else a rumble device.
/// Devices are found, opened and closed on another thread; pulses before one is open are dropped. A
/// performer looks for a device once. If there is none, or it vanishes, its pulses are dropped;
/// after a vanished device, or a moment without use, `defaultPerformer` makes a new performer. Main
/// thread only; needs a QCoreApplication there.
class LinuxHaptics final : public HapticService {
public:
    /// On the devices of this machine.
    LinuxHaptics();
    explicit LinuxHaptics(std::shared_ptr<ForceFeedbackDevices> devices);
    /// Closes the device, but waits for that no longer than 0.5 s.
    ~LinuxHaptics() override;

    [[nodiscard]] std::shared_ptr<HapticPerformer> defaultPerformer() override;

private:
    class Background;
    class Performer;

    void closeWhenUnused();

    std::shared_ptr<ForceFeedbackDevices> m_devices;
    // Its threads have references too: one may be blocked on a device that does not answer.
    std::shared_ptr<Background> m_background;
    // The only performer that can have a device. Kept for a moment after its last use: some callers
    // ask for it at every pulse, and uploading effects takes a while.
    std::shared_ptr<Performer> m_current;
    QTimer m_useCheck;
    bool m_wasAskedFor = false;
    int m_unusedChecks = 0;
};

} // namespace quorvane
