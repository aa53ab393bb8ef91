#pragma once

#include <optional>

#include "platform/InProcessNotificationCenter.h"
#include "platform/Platform.h"
#include "platform/simulated/ScenarioPlayer.h"
#include "platform/simulated/SimulatedEventTapService.h"

namespace quorvane {

/// The scenario's word on the login item, the real desktop's on everything else.
class SimulatedLoginItem final : public Application {
public:
    explicit SimulatedLoginItem(const Application& real) : m_real(real) {}

    [[nodiscard]] LoginItemStatus loginItemStatus() const override { return status; }

    [[nodiscard]] bool isActive() const override { return m_real.isActive(); }

    LoginItemStatus status = LoginItemStatus::NotRegistered;

private:
    const Application& m_real;
};

/// A scenario's devices under the real screens and the real sound: what the scenario describes is
/// simulated, everything else is the machine's own. Main thread only.
class LiveMachine {
public:
    /// `real` outlives the machine; the scenario's time starts now.
    LiveMachine(const Scenario& scenario, const Platform& real);

    [[nodiscard]] Platform platform();

    /// From now on the scenario's events happen.
    void start(ScenarioHandlers handlers);

private:
    Platform m_real;
    SimulatedHID m_hid;
    InProcessNotificationCenter m_workspace;
    SimulatedEventTapService m_eventTaps;
    SimulatedAccessibility m_accessibility;
    SimulatedSystemInfo m_system;
    SimulatedLoginItem m_application;
    // The scenario's own store; none where the person's is used.
    std::optional<SimulatedUserDefaults> m_userDefaults;
    ScenarioPlayer m_player;
};

} // namespace quorvane
