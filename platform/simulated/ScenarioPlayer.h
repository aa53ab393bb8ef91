#pragma once

#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "base/NonCopyable.h"
#include "platform/EventTap.h"
#include "platform/NotificationCenter.h"
#include "platform/RunLoop.h"
#include "platform/simulated/Scenario.h"
#include "platform/simulated/SimulatedEventTapService.h"
#include "platform/simulated/SimulatedHID.h"
#include "platform/simulated/SimulatedSystem.h"

namespace quorvane {

/// What a scenario needs somebody else to do. An empty handler: the event passes unheard.
struct ScenarioHandlers {
    std::function<void(std::string_view control)> press;
    std::function<void(const TapEvent& event)> key;
    std::function<void()> quit;
};

/// Lets the events of a scenario happen, in virtual time or in real. Main thread only.
class ScenarioPlayer : NonCopyable {
public:
    /// Time zero is now. The services outlive the player.
    ScenarioPlayer(Scenario scenario, RunLoop& runLoop, NotificationCenter& workspace,
                   NotificationCenter& defaultCenter);
    /// What has not happened yet no longer happens.
    ~ScenarioPlayer();

    /// Sets `hid`, `accessibility` and `system` to what the scenario says of the machine.
    void setUpMachine(SimulatedHID& hid, SimulatedAccessibility& accessibility,
                      SimulatedSystemInfo& system);

    /// From now on the events happen, each at its time; those whose time has passed, at once.
    void start(ScenarioHandlers handlers);

private:
    void addDevice(SimulatedHID& hid, const Scenario::Device& description);
    void happen(const Scenario::Event& event);
    void schedule(double at, std::function<void()> block);

    Scenario m_scenario;
    RunLoop& m_runLoop;
    NotificationCenter& m_workspace;
    NotificationCenter& m_defaultCenter;
    ScenarioHandlers m_handlers;
    double m_startTime;
    std::vector<std::shared_ptr<Timer>> m_timers;
};

} // namespace quorvane
