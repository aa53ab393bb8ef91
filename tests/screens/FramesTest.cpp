#include "tests/screens/ScreensFixture.h"

#include <QTest>

namespace quorvane {
namespace {

// How often the window is drawn anew.
class Frames : public ScreensTest {
protected:
    // Frames of two seconds of the controller's time, with enough real time to draw each.
    int framesOfTwoSeconds() {
        settle();
        const int before = m_frames;
        for (int i = 0; i < 40; ++i) {
            m_machine.runLoop.advance(0.05);
            draw();
        }
        settle();
        return m_frames - before;
    }
};

TEST_F(Frames, AreNoneOnTheHardwareCheckAtRest) {
    launch();
    EXPECT_EQ(framesOfTwoSeconds(), 0);
}

TEST_F(Frames, ComeWithGlowAndParticlesAndNoFaster) {
    launchChecked();
    const int count = framesOfTwoSeconds();
    EXPECT_GT(count, 10);
    EXPECT_LE(count, 2 * 2 * (20 + 30));
}

TEST_F(Frames, AreNoneForThoseWhoAskForLessMotion) {
    m_desktop.motionReduced = true;
    launchIntoControlPanel();
    EXPECT_EQ(framesOfTwoSeconds(), 0);
    press("About Build quality");
    EXPECT_EQ(framesOfTwoSeconds(), 0);
}

TEST_F(Frames, AreNoneWhileOtherWindowsCoverEverything) {
    launchChecked();
    m_desktop.covered = true;
    EXPECT_EQ(framesOfTwoSeconds(), 0);
    m_desktop.covered = false;
    EXPECT_GT(framesOfTwoSeconds(), 10);
}

TEST_F(Frames, AreNoneWhileHidden) {
    launchIntoControlPanel();
    m_window->window().hide();
    EXPECT_EQ(framesOfTwoSeconds(), 0);
    m_window->window().show();
    EXPECT_GT(framesOfTwoSeconds(), 10);
}

TEST_F(Frames, AreNoneOfAScanThatNobodySees) {
    launch();
    press("CHECK HARDWARE 🔍");
    m_desktop.covered = true;
    settle();
    const int before = m_frames;
    QTest::qWait(200);
    EXPECT_EQ(m_frames, before);
}

} // namespace
} // namespace quorvane
