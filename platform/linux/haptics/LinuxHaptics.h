#pragma once

#include <QThreadPool>
#include <QTimer>
#include <memory>

#include "platform/Haptics.h"
#include "platform/linux/haptics/ForceFeedback.h"

namespace quorvane {

/// Pulses on a device with force feedback: a haptic touchpad if there is one, else what rumbles.
/// Devices are looked for, opened, given their effects and closed on another thread; pulses asked
/// for before that is done are not felt. A device that vanishes is dropped, and the performer that
/// had it stays still: the next one looks anew. One that comes while a performer is without any is
/// found by the next one too, that is once nobody has used the last for a moment. Main thread only;
/// needs a QCoreApplication there.
class LinuxHaptics final : public HapticService {
public:
    /// On the devices of this machine.
    LinuxHaptics();
    explicit LinuxHaptics(std::shared_ptr<ForceFeedbackDevices> devices);
    /// Closes the device, unless that takes the device very long.
    ~LinuxHaptics() override;

    [[nodiscard]] std::shared_ptr<HapticPerformer> defaultPerformer() override;

private:
    class Performer;

    void closeWhenUnused();

    std::shared_ptr<ForceFeedbackDevices> m_devices;
    // Left alone at the end if it is waiting for a device that does not answer.
    std::unique_ptr<QThreadPool> m_background;
    // The one performer that can have a device. Kept for as long as somebody uses it and a moment
    // more: some ask for it at every pulse, and effects take a while to upload.
    std::shared_ptr<Performer> m_current;
    QTimer m_look;
    bool m_wasAskedFor = false;
    int m_quietLooks = 0;
};

} // namespace quorvane
