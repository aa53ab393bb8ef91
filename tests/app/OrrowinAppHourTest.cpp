#include "tests/app/OrrowinAppFixture.h"

namespace quorvane {
namespace {

using testing::Each;
using testing::IsEmpty;

/// An hour with every switch on: a key each second, a lid that moves once a minute, and a sleep
/// every ten minutes.
class OrrowinAppHourTest : public OrrowinAppFixture {
protected:
    void passAnHour() {
        enterPanel();
        for (const ToggleRow& row : view->toggleRows())
            row.setOn(true);
        for (int minute = 0; minute < 60; ++minute) {
            if (minute % 10 == 9)
                sleepAndWakeUp();
            moveLid();
            for (int second = 0; second < 60; ++second)
                passASecond();
        }
    }

    void sleepAndWakeUp() {
        machine.workspace.post("NSWorkspaceScreensDidSleepNotification");
        machine.runLoop.sleep(1000);
        wakeUp();
        machine.workspace.post("NSWorkspaceScreensDidWakeNotification");
    }

    /// Presses the stop button.
    void expectThatItEndsEverything() {
        view->leaveSufferingMode();
        EXPECT_THAT(switches(), Each(false));
        EXPECT_THAT(panels(), IsEmpty());
        EXPECT_EQ(machine.eventTaps.openCount(), 0U);
        machine.runLoop.advance(60);
        const auto pulses = machine.haptics.pulses().size();
        const auto sounds = machine.audio.timeline().size();
        sleepAndWakeUp();
        moveLid();
        press();
        machine.runLoop.advance(60);
        EXPECT_THAT(sounding(), IsEmpty());
        EXPECT_THAT(panels(), IsEmpty());
        EXPECT_EQ(machine.haptics.pulses().size(), pulses);
        EXPECT_EQ(machine.audio.timeline().size(), sounds);
        EXPECT_EQ(machine.runLoop.pendingCount(), idle);
    }

    [[nodiscard]] std::size_t shownSoFar(std::string_view opaque) const {
        std::size_t count = 0;
        for (const auto& panel : machine.screens.panels())
            count += panel->calls.at(2) == opaque ? 1U : 0U;
        return count;
    }

    [[nodiscard]] long soundedSoFar(const std::string& file) const {
        const auto& sounds = machine.audio.timeline();
        return std::count_if(sounds.begin(), sounds.end(), [&](const SimulatedSound& sound) {
            return sound.file.stem() == file;
        });
    }

    [[nodiscard]] long pulsesSoFar(HapticPattern pattern) const {
        const auto& pulses = machine.haptics.pulses();
        return std::count_if(pulses.begin(), pulses.end(),
                             [&](const auto& pulse) { return pulse.pattern == pattern; });
    }

private:
    void passASecond() {
        machine.runLoop.advance(0.5);
        press();
        machine.runLoop.advance(0.5);
        ASSERT_LE(panels().size(), 2U);
        ASSERT_THAT(switches(), Each(true));
    }
};

TEST_F(OrrowinAppHourTest, EverythingKeepsItsPaceForAnHourAndEndsWithTheStopButton) {
    passAnHour();
    EXPECT_EQ(shownSoFar("opaque yes"), 240U) << "stop screens, one every 15 s";
    // A freeze takes 23 to 44 s with its wait.
    EXPECT_GE(shownSoFar("opaque no"), 81U);
    EXPECT_LE(shownSoFar("opaque no"), 156U);
    EXPECT_EQ(soundedSoFar("keyboard"), 3600);
    EXPECT_EQ(soundedSoFar("tractor"), 6);
    EXPECT_EQ(soundedSoFar("fanmac"), 1);
    EXPECT_GE(soundedSoFar(""), 60 + 6) << "creaks and rumbles";
    EXPECT_EQ(pulsesSoFar(HapticPattern::LevelChange), 20 * 3600) << "the fan's";
    EXPECT_EQ(pulsesSoFar(HapticPattern::Generic), 20 * 3600) << "the fan's";
    EXPECT_GT(pulsesSoFar(HapticPattern::Alignment), 6 * 60) << "the engine's";
    EXPECT_EQ(lid->readings(), 2 + 30 * 3600) << "to find it, to start, and then 30 a second";
    EXPECT_EQ(machine.audio.nodeCount(), 2U);
    EXPECT_EQ(machine.eventTaps.openCount(), 1U);
    expectThatItEndsEverything();
}

TEST_F(OrrowinAppHourTest, WithoutALidSensorTheHingeCreaksAfterEverySleepAndNeverElse) {
    lid->unplug();
    passAnHour();
    double creaking = 0;
    for (const SimulatedSound& sound : machine.audio.timeline())
        if (sound.file.empty() && !sound.loops)
            creaking += sound.stopTime - sound.startTime;
    EXPECT_NEAR(creaking, 6 * 3.05, 6 / 60.0 + 1e-6) << "six bursts";
    EXPECT_EQ(shownSoFar("opaque yes"), 240U);
    EXPECT_EQ(soundedSoFar("tractor"), 6);
    expectThatItEndsEverything();
}

} // namespace
} // namespace quorvane
