#pragma once

#include <functional>
#include <memory>

#include "platform/HID.h"

namespace quorvane {

/// A HID device whose feature report 1 is read by a thread of its own: a device that stops
/// answering blocks the system's call for seconds. The thread opens the device and reads it at the
/// pace at which reports are asked for, each time shortly before the next one is expected; an
/// answer that takes longer than 1/30 s is followed by a pause of the same length. One second after
/// the last call the device is closed and the thread ends; the next call starts both again. A
/// thread that is stuck in the system is left behind.
class ThreadedHIDDevice final : public HIDDevice {
public:
    /// Makes the device that the thread reads, closed. Called on the thread, which then is the only
    /// one to use the result.
    using Make = std::function<std::shared_ptr<HIDDevice>()>;

    /// Calls `make` once for the properties, and neither opens nor reads anything yet.
    explicit ThreadedHIDDevice(Make make);
    /// Does not wait for the thread. Any thread.
    ~ThreadedHIDDevice() override;

    /// Begins to open and read the device, so that the answer is there when it is asked for.
    /// Returns an errno value if the thread cannot be started. Any thread.
    HIDResult readAhead();

    /// From now on the device is what `make` makes: it has been plugged in again. Any thread.
    void replace(Make make);

    /// ETIMEDOUT if it takes longer than 0.25 s, EAGAIN without a thread. Waits until then only.
    HIDResult open() override;
    /// The newest answer, its error if it is one; ETIMEDOUT if that is older than 1/30 s. ENOTSUP
    /// for anything but feature report 1. The first call after `open` waits for an answer, until
    /// the device has taken 0.25 s for it, `open` included: it may have to wake up first. This
    /// happens while the sensor is looked for, once for a device. Later calls do not wait.
    HIDResult getReport(HIDReportType type, std::uint8_t reportID, std::span<std::uint8_t> buffer,
                        std::size_t& length) override;
    [[nodiscard]] std::optional<int> integerProperty(std::string_view key) const override;

private:
    class Reader;

    const std::shared_ptr<HIDDevice> m_properties;
    // Shared with the thread.
    const std::shared_ptr<Reader> m_reader;
    bool m_open = false;
    bool m_readBefore = false;
};

} // namespace quorvane
