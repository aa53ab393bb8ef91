#include <algorithm>
#include <gtest/gtest.h>
#include <iterator>

#include "tests/faults/PromisedLines.h"
#include "tests/faults/WatchedApp.h"

namespace quorvane {

namespace {

// Longer than the rounding of times.
constexpr double instant = 1e-6;
// A stop screen ends with a tick.
constexpr double tick = 1.0 / 60;
// The longest of the delayed blocks and timers that stopping does not cancel: a freeze's end, and
// the wait of a second chain of freezes.
constexpr double longestLeftover = 45;

constexpr double stopScreenLimit = 5;

bool isStopScreen(const SimulatedPanel& panel) {
    return panel.timeLimit == stopScreenLimit;
}

} // namespace

bool WatchedApp::wasOnAt(Row row, double time) const {
    const Switch& asked = m_switches.at(row);
    return asked.on || time <= asked.offSince + instant;
}

void WatchedApp::check() {
    checkLines();
    checkPanels();
    checkSounds();
    checkPulses();
    checkTap();
    checkRest();
    m_checkedAt = now();
    if (now() - m_forgotAt > 600)
        forget();
}

void WatchedApp::checkLines() {
    const auto& lines = machine.console.lines;
    m_sequenceSinceCheck = m_sequences > 0;
    for (; m_linesSeen < lines.size(); ++m_linesSeen) {
        const std::string& line = lines[m_linesSeen];
        EXPECT_TRUE(isPromisedLine(line)) << line;
        if (line.starts_with("⚠️"))
            ++m_failureLines[line];
        if (line == "🚜 [STARTUP] Sequence complete")
            --m_sequences;
        if (line != "🚜 [STARTUP] Playing tractor + rumble + haptic!")
            continue;
        EXPECT_EQ(++m_sequences, 1) << "a sequence beside another";
        EXPECT_TRUE(wasOnAt(Startup, m_checkedAt)) << "a sequence while it is off";
        m_sequenceSinceCheck = true;
    }
}

void WatchedApp::panelMoved(const SimulatedPanel& panel) {
    if (panel.shown) {
        m_panels[&panel] = now();
        m_noticed.insert(isStopScreen(panel) ? "stop screen" : "freeze");
        return;
    }
    const auto known = m_panels.find(&panel);
    if (known == m_panels.end())
        return;
    const double end = known->second + panel.timeLimit + tick + instant;
    // A held main thread removes it as soon as it goes on.
    const bool wasHeld = m_heldFrom <= end && now() <= m_heldUntil;
    EXPECT_TRUE(now() <= end || wasHeld) << "a panel was up for " << now() - known->second << " s";
    m_panels.erase(known);
}

void WatchedApp::checkPanels() {
    long stopScreens = 0;
    for (const auto& [panel, since] : m_panels) {
        EXPECT_LE(now() - since, panel->timeLimit + tick + instant) << "a panel is left";
        EXPECT_TRUE(isStopScreen(*panel) || (panel->timeLimit >= 3 && panel->timeLimit <= 4));
        stopScreens += isStopScreen(*panel) ? 1 : 0;
    }
    EXPECT_LE(stopScreens, m_switches[StopScreens].on ? 1 : 0);
    EXPECT_LE(std::ssize(m_panels) - stopScreens, m_switches[Freezes].on ? 1 : 0);
}

void WatchedApp::checkSounds() {
    const SimulatedTimeline& timeline = machine.audio.timeline();
    for (; m_soundsSeen < timeline.size(); ++m_soundsSeen)
        m_openSounds.push_back(m_soundsSeen);
    std::erase_if(m_openSounds, [&](std::size_t index) {
        checkSound(timeline[index]);
        return timeline[index].stopTime <= now();
    });
}

void WatchedApp::checkSound(const SimulatedSound& sound) {
    const double heardUntil = std::min(sound.stopTime, now());
    const std::string file = sound.file.stem().string();
    if (file == "fanmac") {
        m_noticed.insert("fan");
        EXPECT_TRUE(wasOnAt(Fan, heardUntil)) << "the fan goes on";
    } else if (file == "keyboard") {
        m_noticed.insert("crack");
        EXPECT_TRUE(wasOnAt(Keyboard, sound.startTime)) << "a crack while it is off";
    } else if (file.empty() && !sound.loops) {
        m_noticed.insert("creak");
        EXPECT_TRUE(wasOnAt(Creak, heardUntil)) << "the creak goes on";
    } else {
        m_noticed.insert(file.empty() ? "rumble" : "engine");
        EXPECT_TRUE(m_sequences > 0 || (m_sequenceSinceCheck && sound.stopTime <= now() + instant))
            << "the engine outside a sequence";
    }
}

void WatchedApp::checkPulses() {
    const auto& pulses = machine.haptics.pulses();
    for (; m_pulsesSeen < pulses.size(); ++m_pulsesSeen) {
        const SimulatedHaptics::Pulse& pulse = pulses[m_pulsesSeen];
        if (pulse.pattern == HapticPattern::Alignment) {
            m_noticed.insert("pulse");
            EXPECT_TRUE(m_sequenceSinceCheck) << "the engine's pulses outside a sequence";
        } else {
            m_noticed.insert("buzz");
            EXPECT_TRUE(wasOnAt(Fan, pulse.at)) << "the fan's pulses go on";
        }
    }
}

void WatchedApp::checkTap() const {
    EXPECT_EQ(machine.eventTaps.openCount(), m_switches[Keyboard].on ? 1U : 0U);
    EXPECT_LE(machine.audio.holdCount(), m_switches[Keyboard].on ? 1U : 0U);
}

void WatchedApp::checkRest() {
    if (!isOpen())
        return;
    const bool sensorRuns = m_view->sensor().isRunning();
    if (sensorRuns && !m_sensorRuns)
        m_sensorPolls = !m_view->sensor().usingSleepWake();
    m_sensorRuns = sensorRuns;
    // The startup experience needs no timer to be ready.
    const bool allOff = std::none_of(m_switches.begin(), m_switches.begin() + Startup,
                                     [](const Switch& each) { return each.on; });
    if (!allOff || now() - m_restSince < longestLeftover)
        return;
    const std::size_t sensorTimers = m_sensorRuns && m_sensorPolls ? 1 : 0;
    EXPECT_EQ(machine.runLoop.pendingCount(), m_launches + sensorTimers + m_scenarioTimers)
        << "timers are left";
}

void WatchedApp::checkNothingIsHeld() {
    EXPECT_EQ(machine.runLoop.pendingCount(), m_launches) << "only the particles' timers are left";
    EXPECT_EQ(machine.workspace.observerCount(), 3U) << "those of this watch are left";
    EXPECT_EQ(machine.defaultCenter.observerCount(), 0U);
    EXPECT_EQ(machine.eventTaps.openCount(), 0U);
    EXPECT_EQ(machine.audio.holdCount(), 0U);
    EXPECT_EQ(machine.audio.runningEngineCount(), 0U);
    EXPECT_EQ(machine.haptics.performersInUse(), 0);
    EXPECT_TRUE(machine.screens.shownPanels().empty());
    EXPECT_TRUE(m_openSounds.empty()) << "something sounds";
    EXPECT_EQ(m_sequences, 0);
    const auto& calls = machine.hid.calls();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "create"),
              std::count(calls.begin(), calls.end(), "release"))
        << "HID managers";
    forget();
}

/// Empties the records of what has been checked: a day of them would not fit in memory.
void WatchedApp::forget() {
    m_forgotAt = now();
    machine.console.lines.clear();
    m_linesSeen = 0;
    machine.haptics.forgetPulses();
    m_pulsesSeen = 0;
    machine.screens.forgetHiddenPanels();
    machine.eventTaps.forgetCalls();
    machine.random.forgetBounds();
    machine.audio.forget();
    if (!machine.audio.timeline().empty())
        return;
    m_soundsSeen = 0;
    m_openSounds.clear();
}

} // namespace quorvane
