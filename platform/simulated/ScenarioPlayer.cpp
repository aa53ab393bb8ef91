#include "platform/simulated/ScenarioPlayer.h"

#include <utility>

namespace quorvane {

namespace {

template <class... Visitors>
struct Overloaded : Visitors... {
    using Visitors::operator()...;
};

template <class... Visitors>
Overloaded(Visitors...) -> Overloaded<Visitors...>;

TapEvent tapEvent(Scenario::Key key) {
    switch (key) {
    case Scenario::Key::Down:
        return {.type = TapEventType::KeyDown};
    case Scenario::Key::Repeat:
        return {.type = TapEventType::KeyDown, .keyboardAutorepeat = 1};
    case Scenario::Key::Up:
        return {.type = TapEventType::KeyUp};
    case Scenario::Key::FlagsChanged:
        break;
    }
    return {.type = TapEventType::FlagsChanged};
}

} // namespace

ScenarioPlayer::ScenarioPlayer(Scenario scenario, RunLoop& runLoop, NotificationCenter& workspace,
                               NotificationCenter& defaultCenter)
    : m_scenario(std::move(scenario)), m_runLoop(runLoop), m_workspace(workspace),
      m_defaultCenter(defaultCenter), m_startTime(runLoop.currentMediaTime()) {}

ScenarioPlayer::~ScenarioPlayer() {
    for (const auto& timer : m_timers)
        timer->invalidate();
}

void ScenarioPlayer::setUpMachine(SimulatedHID& hid, SimulatedAccessibility& accessibility,
                                  SimulatedSystemInfo& system) {
    system.model = m_scenario.model;
    accessibility.trusted = m_scenario.trusted;
    hid.managerRefusesOpen = m_scenario.hidManagerRefusesOpen;
    for (const Scenario::Device& description : m_scenario.devices)
        addDevice(hid, description);
}

void ScenarioPlayer::addDevice(SimulatedHID& hid, const Scenario::Device& description) {
    const auto device = hid.addDevice(description.productID);
    device->vendorID = description.vendorID;
    device->refusesOpen = description.refusesOpen;
    if (!description.lid.empty()) {
        device->setAngle([points = description.lid, start = m_startTime](double time) {
            return lidAngleAt(points, time - start);
        });
    }
    for (const auto& [reading, report] : description.readings)
        device->setReportAt(reading, report);
    if (description.unplugAt)
        schedule(*description.unplugAt, [device] { device->unplug(); });
}

void ScenarioPlayer::start(ScenarioHandlers handlers) {
    m_handlers = std::move(handlers);
    // Each timer performs the next event and not one of its own: those of about the same time are
    // not sure to fire in their order.
    for (const Scenario::Event& event : m_scenario.events)
        schedule(event.at, [this] { perform(m_scenario.events[m_performed++]); });
}

void ScenarioPlayer::schedule(double at, std::function<void()> block) {
    const double delay = m_startTime + at - m_runLoop.currentMediaTime();
    m_timers.push_back(
        m_runLoop.scheduledTimer(delay, false, [block = std::move(block)](Timer&) { block(); }));
}

void ScenarioPlayer::perform(const Scenario::Event& event) {
    const auto callIfSet = [](const auto& handler, const auto&... arguments) {
        if (handler)
            handler(arguments...);
    };
    std::visit(
        Overloaded{
            [&](const Scenario::Press& press) { callIfSet(m_handlers.press, press.control); },
            [&](const Scenario::Workspace& notification) { m_workspace.post(notification.name); },
            [&](const Scenario::Post& notification) { m_defaultCenter.post(notification.name); },
            [&](Scenario::Key key) { callIfSet(m_handlers.key, tapEvent(key)); },
            [&](const Scenario::Quit&) { callIfSet(m_handlers.quit); }},
        event.what);
}

} // namespace quorvane
