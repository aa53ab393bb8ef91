#pragma once

#include <optional>

#include "platform/InProcessNotificationCenter.h"
#include "platform/Platform.h"
#include "platform/simulated/ScenarioPlayer.h"
#include "platform/simulated/SimulatedEventTapService.h"

namespace quorvane {

/// The scenario's login item status; everything else is the real desktop's.
class SimulatedLoginItem final : public Application {
public:
    explicit SimulatedLoginItem(const Application& real) : m_real(real) {}

    [[nodiscard]] LoginItemStatus loginItemStatus() const override { return status; }

    [[nodiscard]] bool isActive() const override { return m_real.isActive(); }

    LoginItemStatus status = LoginItemStatus::NotRegistered;

private:
    const Application& m_real;
};

/// Simulates what a scenario describes; screens, sound and everything else are the real machine's.
/// Main thread only.
class LiveMachine {
public:
    /// `real` outlives the machine. The scenario's time zero is now.
    LiveMachine(const Scenario& scenario, const Platform& real);

    [[nodiscard]] Platform platform();

    /// Starts the scenario's events. Replaces `handlers.key`: the events go to the event taps.
    void start(ScenarioHandlers handlers);

private:
    Platform m_real;
    SimulatedHID m_hid;
    InProcessNotificationCenter m_workspace;
    SimulatedEventTapService m_eventTaps;
    SimulatedAccessibility m_accessibility;
    SimulatedSystemInfo m_system;
    SimulatedLoginItem m_application;
    // None: the real settings are used.
    std::optional<SimulatedUserDefaults> m_userDefaults;
    ScenarioPlayer m_player;
};

} // namespace quorvane
