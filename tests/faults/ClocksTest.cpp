#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vector>

#include "tests/app/OrrowinAppFixture.h"

namespace quorvane {
namespace {

using testing::Each;
using testing::IsEmpty;

constexpr double day = 86400;

/// The whole program with every switch on, when a clock does what clocks do.
class ClocksTest : public OrrowinAppFixture {
public:
    // The program of the fixture ends later, and its panels with it.
    ~ClocksTest() override { machine.screens.onPanelMoved({}); }

protected:
    void switchAllOn() {
        enterPanel();
        for (const ToggleRow& row : view->toggleRows())
            row.setOn(true);
        m_allOnAt = now();
        machine.screens.onPanelMoved([this](const SimulatedPanel& panel) {
            if (panel.shown && panel.timeLimit == 5)
                m_stopScreens.push_back(now() - m_allOnAt);
            if (panel.shown)
                m_shownAt = now();
            else
                m_longest = std::max(m_longest, now() - m_shownAt);
        });
    }

    [[nodiscard]] double now() const { return machine.runLoop.currentMediaTime(); }

    void setDateBy(double seconds) {
        machine.runLoop.setDate(machine.runLoop.currentDate() + seconds);
    }

    [[nodiscard]] long linesSaying(const std::string& line) const {
        const auto& lines = machine.console.lines;
        return std::count(lines.begin(), lines.end(), line);
    }

    /// The creak, the crack, the fan, the engine and the pulses of the next ten seconds.
    void expectThatEverythingWorks() {
        const auto pulses = machine.haptics.pulses().size();
        wakeUp();
        moveLid();
        machine.runLoop.advance(1);
        EXPECT_NEAR(view->sensor().velocity(), 20, 6);
        press();
        EXPECT_THAT(sounding(),
                    testing::UnorderedElementsAre("fanmac", "tractor", "node", "node", "keyboard"));
        machine.runLoop.advance(0.149);
        const auto cracked = machine.audio.timeline().size();
        press();
        EXPECT_EQ(machine.audio.timeline().size(), cracked) << "within 0.15 s";
        machine.runLoop.advance(0.002);
        press();
        EXPECT_GT(machine.audio.timeline().size(), cracked);
        machine.runLoop.advance(8.849);
        EXPECT_THAT(sounding(), testing::ElementsAre("fanmac"));
        EXPECT_NEAR(static_cast<double>(machine.haptics.pulses().size() - pulses), 400 + 170, 40);
    }

    double m_allOnAt = 0;
    /// Seconds from then to each stop screen.
    std::vector<double> m_stopScreens;
    double m_shownAt = 0;
    double m_longest = 0;
};

TEST_F(ClocksTest, AWallClockThatJumpsBothWaysChangesNoPaceAndLengthensNothing) {
    switchAllOn();
    turn("Performance", false);
    for (int second = 0; second < 120; ++second) {
        if (second % 20 == 0)
            wakeUp();
        machine.runLoop.advance(1);
        setDateBy(second % 2 == 0 ? 3600 : -7200);
        setDateBy(second % 3 == 0 ? 3 : -3);
    }
    ASSERT_EQ(m_stopScreens.size(), 8U) << "one every 15 s";
    for (std::size_t i = 0; i < m_stopScreens.size(); ++i)
        EXPECT_NEAR(m_stopScreens[i], 15.0 * static_cast<double>(i + 1), 1e-6);
    EXPECT_LE(m_longest, 5 + 1.0 / 60 + 1e-6);
    EXPECT_EQ(linesSaying("🚜 [STARTUP] Playing tractor + rumble + haptic!"), 6);
    EXPECT_EQ(linesSaying("🚜 [STARTUP] Sequence complete"), 6);
    EXPECT_EQ(lid->readings(), 2 + 30 * 120);
}

TEST_F(ClocksTest, AMainThreadThatIsHeldFor30SecondsGoesOnAtItsPaceAndMakesUpForNothing) {
    switchAllOn();
    turn("Performance", false);
    machine.runLoop.advance(16);
    ASSERT_THAT(panels(), testing::SizeIs(1));
    const auto sounds = machine.audio.timeline().size();
    const auto pulses = machine.haptics.pulses().size();
    machine.runLoop.block(30);
    machine.runLoop.advance(0);
    // The one of 15 s is over; those of 30 and 45 s come as one, which begins now.
    EXPECT_THAT(panels(), testing::SizeIs(1));
    EXPECT_EQ(m_stopScreens.size(), 2U);
    EXPECT_EQ(machine.audio.timeline().size(), sounds);
    EXPECT_EQ(machine.haptics.pulses().size() - pulses, 2U) << "one tick of the fan's";
    machine.runLoop.advance(5.02);
    EXPECT_THAT(panels(), IsEmpty());
    machine.runLoop.advance(10);
    ASSERT_EQ(m_stopScreens.size(), 3U);
    EXPECT_NEAR(m_stopScreens.back(), 60, 1e-6) << "the grid of before";
    EXPECT_THAT(switches(), testing::ElementsAre(true, true, true, true, false, true));
}

TEST_F(ClocksTest, KeysThatWaitedForAHeldMainThreadGiveOneCrack) {
    switchAllOn();
    machine.runLoop.advance(1);
    machine.runLoop.block(30);
    for (int i = 0; i < 100; ++i)
        machine.eventTaps.pressKey();
    const auto sounds = machine.audio.timeline().size();
    machine.runLoop.runMainQueue();
    EXPECT_EQ(machine.audio.timeline().size(), sounds + 1);
}

TEST_F(ClocksTest, FourHundredDaysAfterBootEverythingKeepsItsPace) {
    machine.runLoop.block(400 * day);
    switchAllOn();
    turn("Performance", false);
    machine.runLoop.advance(300.01);
    ASSERT_EQ(m_stopScreens.size(), 20U);
    for (std::size_t i = 0; i < m_stopScreens.size(); ++i)
        EXPECT_NEAR(m_stopScreens[i], 15.0 * static_cast<double>(i + 1), 1e-6);
    EXPECT_LE(m_longest, 5 + 1.0 / 60 + 1e-6);
    EXPECT_EQ(lid->readings(), 2 + 30 * 300);
    EXPECT_EQ(machine.haptics.pulses().size(), 2 * 20 * 300U);
    turn("Stability", false);
    expectThatEverythingWorks();
}

TEST_F(ClocksTest, FourHundredDaysAfterItsLaunchEverythingKeepsItsPace) {
    switchAllOn();
    turn("Performance", false);
    machine.runLoop.advance(1);
    machine.runLoop.block(400 * day);
    machine.runLoop.advance(20);
    m_stopScreens.clear();
    const int readings = lid->readings();
    machine.runLoop.advance(300);
    ASSERT_EQ(m_stopScreens.size(), 20U);
    for (const double at : m_stopScreens)
        EXPECT_NEAR(std::remainder(at, 15), 0, 1e-6) << "the grid of the start";
    EXPECT_EQ(lid->readings() - readings, 30 * 300);
    turn("Stability", false);
    expectThatEverythingWorks();
    turn("Stability", true);
    view->leaveSufferingMode();
    EXPECT_THAT(switches(), Each(false));
    EXPECT_THAT(panels(), IsEmpty());
    machine.runLoop.advance(60);
    EXPECT_EQ(machine.runLoop.pendingCount(), idle);
}

} // namespace
} // namespace quorvane
