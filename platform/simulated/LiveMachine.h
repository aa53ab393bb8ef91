#pragma once

#include <optional>

#include "platform/InProcessNotificationCenter.h"
#include "platform/Platform.h"
#include "platform/simulated/ScenarioPlayer.h"

namespace quorvane {

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
    SimulatedSystemInfo m_system;
    // The scenario's own store; none where the person's is used.
    std::optional<SimulatedUserDefaults> m_userDefaults;
    ScenarioPlayer m_player;
};

} // namespace quorvane
