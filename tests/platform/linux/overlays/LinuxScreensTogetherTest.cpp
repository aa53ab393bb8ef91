// A stop screen and a freeze at the same time, of both effects on a virtual clock.

#include <gmock/gmock.h>

#include "effects/crash/BSODManager.h"
#include "effects/crash/FreezeManager.h"
#include "platform/simulated/SimulatedMachine.h"
#include "tests/platform/linux/overlays/LinuxScreensFixture.h"
#include "tests/support/ExchangedPlatform.h"
#include "tests/support/Waiting.h"

namespace quorvane {

/// Stop screens from 15 to 20 s and from 30 to 35 s, over a red window.
class LinuxScreensTogetherTest : public LinuxScreensTest {
protected:
    LinuxScreensTogetherTest() {
        m_desktop.openWindow(TestDesktop::whole, red, true);
        EXPECT_TRUE(comesToShow(farFromText, red));
    }

    ~LinuxScreensTogetherTest() override {
        m_stopScreens->stop();
        m_freezes->stop();
    }

    /// Starts both effects; the first freeze is up from second `freezeFrom` (20 to 40) on, for 4 s.
    void start(double freezeFrom) {
        constexpr std::uint64_t highest = 9007199254740992;
        const double wait = (freezeFrom - 20) / 20 * static_cast<double>(highest);
        // The wait for the freeze, the rows of two stop codes (clamped) and the freeze's length.
        m_machine.random.script({static_cast<std::uint64_t>(wait), highest, highest, highest});
        m_freezes->start();
        m_stopScreens->start();
    }

    /// Lets virtual time pass, up to `second` since the start.
    void advanceTo(double second) {
        m_machine.runLoop.advance(second - m_second);
        m_second = second;
        waitFor(50ms);
    }

    [[nodiscard]] std::size_t shown() const { return m_desktop.panels().size(); }

    SimulatedMachine m_machine;
    Platform m_platform = exchange(m_machine.platform(), {.screens = &m_screens});
    std::shared_ptr<BSODManager> m_stopScreens = BSODManager::create(m_platform);
    std::shared_ptr<FreezeManager> m_freezes = FreezeManager::create(m_platform);
    double m_second = 0;
};

TEST_F(LinuxScreensTogetherTest, FreezeThatComesLaterIsInFrontAndOutlastsTheStopScreen) {
    const auto compositor = m_desktop.startCompositor();
    start(32);
    advanceTo(31);
    ASSERT_EQ(shown(), 1U);
    EXPECT_TRUE(comesToShow(farFromText, blue));
    advanceTo(33);
    EXPECT_EQ(shown(), 2U);
    EXPECT_TRUE(comesToShow(farFromText, veiled(blue)));
    advanceTo(34.9);
    EXPECT_EQ(shown(), 2U);
    advanceTo(35.1);
    EXPECT_EQ(shown(), 1U);
    EXPECT_TRUE(comesToShow(farFromText, veiled(red)));
    advanceTo(36.1);
    EXPECT_EQ(shown(), 0U);
    EXPECT_TRUE(comesToShow(farFromText, red));
}

TEST_F(LinuxScreensTogetherTest, StopScreenThatComesLaterIsInFrontAndOutlastsTheFreeze) {
    start(28);
    advanceTo(29);
    ASSERT_EQ(shown(), 1U);
    EXPECT_TRUE(comesToShow(farFromText, veiled(red)));
    advanceTo(31);
    EXPECT_EQ(shown(), 2U);
    EXPECT_TRUE(comesToShow(farFromText, blue));
    advanceTo(32.1);
    EXPECT_EQ(shown(), 1U);
    EXPECT_TRUE(comesToShow(farFromText, blue));
    advanceTo(34.9);
    EXPECT_EQ(shown(), 1U);
    advanceTo(35.1);
    EXPECT_EQ(shown(), 0U);
    EXPECT_TRUE(comesToShow(farFromText, red));
}

} // namespace quorvane
