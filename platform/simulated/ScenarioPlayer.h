#pragma once

#include <cstddef>
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

/// Handlers of events that the player cannot perform itself. An empty one ignores its events.
struct ScenarioHandlers {
    std::function<void(std::string_view control)> press;
    std::function<void(const TapEvent& event)> key;
    std::function<void()> quit;
};

/// Plays a scenario's events, in the time of its run loop. Main thread only.
class ScenarioPlayer : NonCopyable {
public:
    /// Time zero is now. The services outlive the player.
    ScenarioPlayer(Scenario scenario, RunLoop& runLoop, NotificationCenter& workspace,
                   NotificationCenter& defaultCenter);
    /// Cancels the remaining events.
    ~ScenarioPlayer();

    /// Sets up `hid`, `accessibility` and `system` as the scenario describes the machine.
    void setUpMachine(SimulatedHID& hid, SimulatedAccessibility& accessibility,
                      SimulatedSystemInfo& system);

    /// Starts the events, each at its time; those whose time has passed, at once. They happen in
    /// the order of the scenario. Once.
    void start(ScenarioHandlers handlers);

private:
    void addDevice(SimulatedHID& hid, const Scenario::Device& description);
    void perform(const Scenario::Event& event);
    void schedule(double at, std::function<void()> block);

    Scenario m_scenario;
    RunLoop& m_runLoop;
    NotificationCenter& m_workspace;
    NotificationCenter& m_defaultCenter;
    ScenarioHandlers m_handlers;
    double m_startTime;
    std::size_t m_performed = 0;
    std::vector<std::shared_ptr<Timer>> m_timers;
};

} // namespace quorvane
