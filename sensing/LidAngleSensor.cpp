#include "sensing/LidAngleSensor.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <span>
#include <string>

#include "base/Format.h"
#include "base/MainThread.h"

namespace quorvane {

namespace {

// Apple's vendor ID, and the products known to contain the sensor, likeliest first.
constexpr int appleVendorID = 0x05AC;
constexpr std::array productIDs{0x8104, 0x8102, 0x8103, 0x8105, 0x8262};

constexpr std::uint8_t lidAngleReportID = 1;
constexpr std::size_t shortestReport = 3;

// Degrees. A device whose first reading is outside this range is not a lid sensor.
constexpr int smallestFirstAngle = 1;
constexpr int largestFirstAngle = 199;

constexpr double pollRate = 30.0;
// Seconds: the velocity is the mean slope over this long, at least over `shortestSlope`.
constexpr double historyWindow = 0.2;
constexpr double shortestSlope = 0.03;

constexpr double burstVelocity = 80.0;
constexpr double decayInterval = 0.05;
constexpr double decayFactor = 0.93;
constexpr double restCutOff = 1.0;

/// Reads the lid-angle feature report into `buffer`; none if the read failed or was too short.
std::optional<int> readAngle(HIDDevice& device, std::span<std::uint8_t> buffer) {
    std::size_t length = buffer.size();
    const HIDResult result =
        device.getReport(HIDReportType::Feature, lidAngleReportID, buffer, length);
    if (result != hidSuccess || length < shortestReport)
        return std::nullopt;
    return buffer[1] | buffer[2] << 8;
}

struct AcceptedDevice {
    std::shared_ptr<HIDDevice> device;
    int angle = 0;
};

/// The first device that opens and whose first angle is a lid's. Rejected ones are left open.
std::optional<AcceptedDevice> findLid(const std::vector<std::shared_ptr<HIDDevice>>& devices) {
    for (const auto& device : devices) {
        if (device->open() != hidSuccess)
            continue;
        std::array<std::uint8_t, 8> report{};
        const auto angle = readAngle(*device, report);
        if (angle && *angle >= smallestFirstAngle && *angle <= largestFirstAngle)
            return AcceptedDevice{.device = device, .angle = *angle};
    }
    return std::nullopt;
}

} // namespace

std::shared_ptr<LidAngleSensor> LidAngleSensor::create(const Platform& platform) {
    return makeMainThreadOwned(platform.runLoop,
                               std::unique_ptr<LidAngleSensor>(new LidAngleSensor(platform)));
}

LidAngleSensor::LidAngleSensor(const Platform& platform) : m_platform(platform) {
    // The window holds six or seven samples at the poll rate, so polling does not allocate.
    m_angleHistory.reserve(16);
}

LidAngleSensor::~LidAngleSensor() {
    requireMainThread(m_platform.runLoop, "LidAngleSensor");
    stop();
}

void LidAngleSensor::probeSensor() {
    const bool found = std::any_of(productIDs.begin(), productIDs.end(),
                                   [this](int productID) { return tryHIDDevice(productID); }) ||
                       scanAllAppleHIDDevices();
    if (!found)
        m_platform.console.print(
            "⚠️ [SENSOR] No HID lid sensor found — using sleep/wake fallback");
    m_sensorFound = true;
    m_usingSleepWake = !found;
}

bool LidAngleSensor::tryHIDDevice(int productID) {
    return adoptDevice({.vendorID = appleVendorID, .productID = productID}, "Found lid sensor!");
}

bool LidAngleSensor::scanAllAppleHIDDevices() {
    return adoptDevice({.vendorID = appleVendorID, .productID = {}}, "Found lid sensor via scan!");
}

bool LidAngleSensor::adoptDevice(const HIDMatching& matching, std::string_view message) {
    const auto manager = m_platform.hid.createManager();
    manager->setDeviceMatching(matching);
    manager->scheduleWithRunLoop();
    if (manager->open() != hidSuccess)
        return false;
    const auto devices = manager->copyDevices();
    if (!devices || devices->empty())
        return false;
    const auto lid = findLid(*devices);
    if (!lid) {
        manager->close();
        return false;
    }
    const int productID = matching.productID
                              ? *matching.productID
                              : lid->device->integerProperty("ProductID").value_or(0);
    m_platform.console.print("✅ [SENSOR] " + std::string(message) + " ProductID=0x" +
                             formatHex(static_cast<unsigned>(productID)) +
                             ", angle=" + std::to_string(lid->angle) + "°");
    m_hidManager = manager;
    m_hidDevice = lid->device;
    return true;
}

void LidAngleSensor::start() {
    if (!m_sensorFound || m_isRunning)
        return;
    if (m_usingSleepWake)
        startSleepWakeMonitoring();
    else
        startPolling();
    m_isRunning = true;
}

void LidAngleSensor::startPolling() {
    m_previousAngle = 0;
    m_previousTime = m_platform.runLoop.currentMediaTime();
    poll();
    m_pollTimer =
        m_platform.runLoop.scheduledTimer(1.0 / pollRate, true, [weak = weak_from_this()](Timer&) {
            if (const auto sensor = weak.lock())
                sensor->poll();
        });
}

void LidAngleSensor::poll() {
    if (!m_hidDevice)
        return;
    const auto angle = readAngle(*m_hidDevice, m_hidReport);
    if (!angle)
        return;
    const double now = m_platform.runLoop.currentMediaTime();
    m_angle = *angle;
    m_angleHistory.push_back({.angle = m_angle, .time = now});
    std::erase_if(m_angleHistory,
                  [now](const Sample& sample) { return now - sample.time > historyWindow; });
    // Not empty: the sample just taken is never too old.
    const Sample oldest = m_angleHistory.front();
    const double dt = now - oldest.time;
    if (dt > shortestSlope)
        m_velocity = (m_angle - oldest.angle) / dt;
}

void LidAngleSensor::stop() {
    invalidate(m_pollTimer);
    invalidate(m_fakeVelocityTimer);
    stopSleepWakeMonitoring();
    m_isRunning = false;
    m_velocity = 0;
}

void LidAngleSensor::startSleepWakeMonitoring() {
    const auto observe = [this](std::string_view name, void (LidAngleSensor::*simulate)()) {
        return m_platform.workspace.addObserver(name, [weak = weak_from_this(), simulate] {
            if (const auto sensor = weak.lock())
                ((*sensor).*simulate)();
        });
    };
    m_sleepWakeObservers = {
        observe(WorkspaceNotification::screensDidWake, &LidAngleSensor::simulateLidOpen),
        observe(WorkspaceNotification::screensDidSleep, &LidAngleSensor::simulateLidClose)};
    m_platform.console.print("📡 [SENSOR] Sleep/wake monitoring started");
}

void LidAngleSensor::stopSleepWakeMonitoring() {
    for (const auto token : m_sleepWakeObservers)
        m_platform.workspace.removeObserver(token);
    m_sleepWakeObservers.clear();
}

void LidAngleSensor::simulateLidOpen() {
    startBurst(burstVelocity);
}

void LidAngleSensor::simulateLidClose() {
    startBurst(-burstVelocity);
}

void LidAngleSensor::startBurst(double velocity) {
    m_velocity = velocity;
    invalidate(m_fakeVelocityTimer);
    m_fakeVelocityTimer = m_platform.runLoop.scheduledTimer(
        decayInterval, true, [weak = weak_from_this()](Timer& timer) {
            if (const auto sensor = weak.lock())
                sensor->decay(timer);
            else
                timer.invalidate();
        });
}

void LidAngleSensor::decay(Timer& timer) {
    m_velocity.setAndNotify(m_velocity * decayFactor);
    if (std::abs(m_velocity) >= restCutOff)
        return;
    m_velocity = 0;
    timer.invalidate();
}

} // namespace quorvane
