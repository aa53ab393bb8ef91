#include "tests/faults/WatchedApp.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <utility>

namespace quorvane {

namespace {

constexpr double longestStep = 0.5;

} // namespace

WatchedApp::WatchedApp() {
    addSound("creaking", 6);
    addSound("tractor", 8);
    addSound("fanmac", 2);
    addSound("keyboard", 0.2);
    machine.screens.onPanelMoved([this](const SimulatedPanel& panel) { panelMoved(panel); });
    for (const std::string_view name :
         {WorkspaceNotification::screensDidSleep, WorkspaceNotification::screensDidWake,
          WorkspaceNotification::didWake})
        machine.workspace.addObserver(name, [this] { m_restSince = now(); });
    // Some time has passed since boot.
    machine.runLoop.advance(10);
}

WatchedApp::~WatchedApp() {
    if (isOpen())
        quit();
}

void WatchedApp::addSound(const std::string& name, double seconds) {
    const std::string path = "sounds/" + name + ".mp3";
    machine.audio.addFile(path, {.sampleRate = 100, .channels = 1},
                          std::vector<float>(static_cast<std::size_t>(seconds * 100), 0.5F));
    machine.bundle.addResource(name, "mp3", path);
}

void WatchedApp::launch() {
    m_app.emplace(machine.platform());
    m_view = m_app->makeContentView();
    followSwitches();
    m_view->onAppear();
    ++m_launches;
    m_sensorRuns = false;
    m_restSince = now();
    check();
}

void WatchedApp::followSwitches() {
    m_switches = {};
    ASSERT_EQ(m_view->toggleRows().size(), m_switches.size());
    for (std::size_t i = 0; i < RowCount; ++i) {
        const Observable<bool>& isOn = *m_view->toggleRows()[i].isOn;
        Switch& followed = m_switches.at(i);
        followed.on = isOn;
        followed.followed = isOn.observe([this, &isOn, &followed] {
            followed.on = isOn;
            followed.offSince = m_restSince = now();
        });
    }
}

void WatchedApp::quit() {
    m_view->onDisappear();
    for (const Switch& each : m_switches)
        EXPECT_FALSE(each.on);
    EXPECT_TRUE(machine.screens.shownPanels().empty()) << "a panel is left";
    check();
    for (Switch& each : m_switches)
        each.followed.cancel();
    m_player.reset();
    m_scenarioTimers = 0;
    m_view.reset();
    m_app.reset();
    // Timers and delayed blocks that nothing cancels end by themselves.
    machine.runLoop.advance(60);
    check();
    checkNothingIsHeld();
}

bool WatchedApp::isOn(std::string_view label) const {
    for (const ToggleRow& row : m_view->toggleRows())
        if (row.text.label == label)
            return row.isOn->get();
    ADD_FAILURE() << "no switch " << label;
    return false;
}

void WatchedApp::press(std::string_view control) {
    m_restSince = now();
    const bool isPanel = screen() == ContentView::Screen::ControlPanel;
    EXPECT_TRUE(pressButton(control) || (isPanel && pressSwitch(control)))
        << "the screen has no control " << control;
    check();
}

bool WatchedApp::pressButton(std::string_view control) {
    switch (screen()) {
    case ContentView::Screen::HardwareCheck:
        if (control == "CONTINUE" && m_view->checkDone())
            m_view->confirmHardwareCheck();
        else if (control == "CHECK HARDWARE 🔍" && !m_view->checkDone() && !m_view->isChecking())
            m_view->runHardwareCheck();
        else
            return false;
        return true;
    case ContentView::Screen::Warning:
        if (control != "MAKE ME SUFFER 😭")
            return false;
        m_noticed.clear();
        if (onEnter)
            onEnter();
        m_view->enterSufferingMode();
        return true;
    case ContentView::Screen::ControlPanel:
        break;
    }
    if (control != "STOP, I'M SUFFERING 😭")
        return false;
    m_view->leaveSufferingMode();
    for (const Switch& each : m_switches)
        EXPECT_FALSE(each.on);
    return true;
}

bool WatchedApp::pressSwitch(std::string_view control) {
    const auto& rows = m_view->toggleRows();
    const auto row = std::find_if(rows.begin(), rows.end(), [&](const ToggleRow& candidate) {
        return candidate.text.label == control;
    });
    if (row == rows.end())
        return false;
    row->setOn(!row->isOn->get());
    return true;
}

bool WatchedApp::wakeUp() {
    machine.workspace.post(WorkspaceNotification::didWake);
    check();
    return m_sequences > 0;
}

void WatchedApp::key() {
    machine.eventTaps.pressKey();
    machine.runLoop.runMainQueue();
}

void WatchedApp::pass(double seconds) {
    const double end = now() + seconds;
    while (end - now() > 1e-9) {
        machine.runLoop.advance(std::min(end - now(), longestStep));
        check();
    }
}

void WatchedApp::hold(double seconds) {
    m_heldFrom = now();
    machine.runLoop.block(seconds);
    m_heldUntil = now();
    machine.runLoop.advance(0);
    check();
}

void WatchedApp::setUp(const Scenario& scenario) {
    m_scenario = scenario;
    machine.application.loginItem =
        scenario.loginItem ? LoginItemStatus::Enabled : LoginItemStatus::NotRegistered;
    machine.application.active = !scenario.loginItem;
    for (const auto& [key, value] : scenario.defaults.value_or(std::map<std::string, bool>{}))
        machine.userDefaults.setBool(key, value);
    m_player = std::make_unique<ScenarioPlayer>(scenario, machine.runLoop, machine.workspace,
                                                machine.defaultCenter);
    m_player->setUpMachine(machine.hid, machine.accessibility, machine.system);
}

void WatchedApp::play() {
    launch();
    bool over = false;
    m_player->start({.press = [this](std::string_view control) { press(control); },
                     .key = [this](const TapEvent& event) { machine.eventTaps.send(event); },
                     .quit = [&over] { over = true; }});
    ASSERT_FALSE(m_scenario.events.empty());
    const double start = now();
    const double end = start + m_scenario.events.back().at;
    while (!over && now() < end + 1) {
        const auto isToCome = [&](const Scenario::Event& event) {
            return start + event.at > now();
        };
        pass(longestStep);
        m_scenarioTimers = static_cast<std::size_t>(
            std::count_if(m_scenario.events.begin(), m_scenario.events.end(), isToCome));
    }
    quit();
}

} // namespace quorvane
