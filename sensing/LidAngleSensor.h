#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "base/NonCopyable.h"
#include "base/Observable.h"
#include "platform/Platform.h"

namespace quorvane {

/// Finds the notebook's lid-angle sensor among Apple's HID devices and publishes the hinge's angle
/// and angular velocity. Without a sensor it simulates bursts of velocity when the screens sleep
/// and wake. Main thread only; owned through a shared pointer.
class LidAngleSensor : public std::enable_shared_from_this<LidAngleSensor>, NonCopyable {
public:
    [[nodiscard]] static std::shared_ptr<LidAngleSensor> create(const Platform& platform);
    ~LidAngleSensor();

    /// Looks for the sensor; without one, selects the fallback. May be called again.
    void probeSensor();
    /// Starts publishing. Does nothing before `probeSensor` or while running.
    void start();
    /// Stops publishing and sets the velocity to 0. Keeps a device that was found.
    void stop();

    /// Last hinge angle read, in degrees. The fallback does not change it.
    [[nodiscard]] const Observable<double>& angle() const { return m_angle; }

    /// Degrees per second, positive while the lid opens. Keeps its value when the device cannot be
    /// read any more.
    [[nodiscard]] const Observable<double>& velocity() const { return m_velocity; }

    [[nodiscard]] const Observable<bool>& isRunning() const { return m_isRunning; }

    /// True once `probeSensor` has run, whatever its result. There is a real sensor if this is true
    /// and usingSleepWake is false.
    [[nodiscard]] const Observable<bool>& sensorFound() const { return m_sensorFound; }

    [[nodiscard]] const Observable<bool>& usingSleepWake() const { return m_usingSleepWake; }

private:
    struct Sample {
        double angle;
        /// Media clock.
        double time;
    };

    explicit LidAngleSensor(const Platform& platform);

    bool tryHIDDevice(int productID);
    bool scanAllAppleHIDDevices();
    /// Prints `message` with the first matching device whose first angle is a lid's, and keeps it.
    bool adoptDevice(const HIDMatching& matching, std::string_view message);
    void startPolling();
    void poll();
    void startSleepWakeMonitoring();
    void stopSleepWakeMonitoring();
    void simulateLidOpen();
    void simulateLidClose();
    void startBurst(double velocity);
    void decay(Timer& timer);

    Platform m_platform;
    Observable<double> m_angle;
    Observable<double> m_velocity;
    Observable<bool> m_isRunning;
    Observable<bool> m_sensorFound;
    Observable<bool> m_usingSleepWake;
    // Stays open and scheduled until it is replaced or the sensor is destroyed; never closed.
    std::shared_ptr<HIDManager> m_hidManager;
    std::shared_ptr<HIDDevice> m_hidDevice;
    // Three bytes are used; reports may be longer.
    std::array<std::uint8_t, 8> m_hidReport{};
    std::shared_ptr<Timer> m_pollTimer;
    // Set by `start`; nothing reads these two.
    double m_previousAngle = 0;
    double m_previousTime = 0;
    std::vector<Sample> m_angleHistory;
    std::vector<NotificationCenter::Token> m_sleepWakeObservers;
    std::shared_ptr<Timer> m_fakeVelocityTimer;
};

} // namespace quorvane
