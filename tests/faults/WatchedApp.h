#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "app/OrrowinApp.h"
#include "base/NonCopyable.h"
#include "platform/simulated/ScenarioPlayer.h"
#include "platform/simulated/SimulatedMachine.h"

namespace quorvane {

/// The whole program on a simulated machine, under the rules that hold whatever fails. A broken
/// rule is a failure of the running test.
///
/// - A panel is up while its switch is on, and no longer than its time; at most one of each kind.
/// - The creak and the fan sound while their switches are on; no crack begins once the keyboard's
/// is
///   off; the engine and its rumble sound during a sequence; the pulses likewise.
/// - No sequence begins while the startup experience is off, and none beside another.
/// - The key tap exists while the keyboard's switch is on.
/// - Every console line is a promised one.
/// - With all switches off for a minute, only the particles' timer and the sensor's are left.
/// - After the end nothing is held: observers, taps, holds, performers, engines, HID managers.
class WatchedApp : NonCopyable {
public:
    WatchedApp();
    ~WatchedApp();

    SimulatedMachine machine;

    /// The program is started and its window appears.
    void launch();
    /// The window is closed, and the program ends.
    void quit();

    [[nodiscard]] bool isOpen() const { return m_view != nullptr; }

    [[nodiscard]] ContentView::Screen screen() const { return m_view->screen(); }

    /// Presses a control by its accessible name; fails if the screen does not offer it.
    void press(std::string_view control);
    /// Whether the switch with this label is on.
    [[nodiscard]] bool isOn(std::string_view label) const;

    /// The machine wakes up. Whether the engine's sequence runs then.
    bool wakeUp();
    /// A key goes down.
    void key();
    /// Lets time pass.
    void pass(double seconds);
    /// Lets time pass with the main thread held.
    void hold(double seconds);

    /// Sets the machine up as a scenario describes it.
    void setUp(const Scenario& scenario);
    /// Plays that scenario from the launch to its end.
    void play();

    /// Called when the button that enters the control panel is pressed.
    std::function<void()> onEnter;

    /// What has been seen, heard and felt since the control panel was entered last: "creak",
    /// "crack", "fan", "engine", "rumble", "stop screen", "freeze", "buzz", "pulse".
    [[nodiscard]] const std::set<std::string>& noticed() const { return m_noticed; }

    /// How often each line about a failure was printed.
    [[nodiscard]] const std::map<std::string, int>& failureLines() const { return m_failureLines; }

private:
    enum Row : std::size_t { Creak, Keyboard, Fan, StopScreens, Freezes, Startup, RowCount };

    struct Switch {
        bool on = false;
        /// When it was switched off last; media time.
        double offSince = 0;
        Subscription followed;
    };

    [[nodiscard]] double now() const { return machine.runLoop.currentMediaTime(); }

    void addSound(const std::string& name, double seconds);
    void followSwitches();
    [[nodiscard]] bool pressSwitch(std::string_view control);
    [[nodiscard]] bool pressButton(std::string_view control);
    void panelMoved(const SimulatedPanel& panel);
    [[nodiscard]] bool wasOnAt(Row row, double time) const;

    void check();
    void checkLines();
    void checkPanels();
    void checkSounds();
    void checkSound(const SimulatedSound& sound);
    void checkPulses();
    void checkTap() const;
    void checkRest();
    void checkNothingIsHeld();
    void forget();

    std::optional<OrrowinApp> m_app;
    std::unique_ptr<ContentView> m_view;
    Scenario m_scenario;
    std::unique_ptr<ScenarioPlayer> m_player;
    std::array<Switch, RowCount> m_switches;
    // Each adds a timer for the life of the process.
    std::size_t m_launches = 0;
    // Timers of the scenario that are still to fire.
    std::size_t m_scenarioTimers = 0;
    bool m_sensorRuns = false;
    bool m_sensorPolls = false;
    // When the last switch went off, or something happened to the machine.
    double m_restSince = 0;
    // When each panel was shown.
    std::map<const SimulatedPanel*, double> m_panels;
    // The last time that the main thread was held.
    double m_heldFrom = 0;
    double m_heldUntil = 0;
    double m_checkedAt = 0;
    double m_forgotAt = 0;
    int m_sequences = 0;
    bool m_sequenceSinceCheck = false;
    std::size_t m_linesSeen = 0;
    std::size_t m_pulsesSeen = 0;
    std::size_t m_soundsSeen = 0;
    // Of the timeline, those that had not ended at the last check.
    std::vector<std::size_t> m_openSounds;
    std::set<std::string> m_noticed;
    std::map<std::string, int> m_failureLines;
};

} // namespace quorvane
