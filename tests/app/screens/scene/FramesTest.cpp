#include "tests/app/screens/ScreensFixture.h"

namespace quorvane {
namespace {

// How often the window is redrawn.
class Frames : public ScreensTest {
protected:
    // In two seconds of the controller's time, with a draw() after every step of the particles.
    int framesOfTwoSeconds() {
        settle();
        const int before = m_frames;
        for (int i = 0; i < 40; ++i) {
            m_machine.runLoop.advance(0.05);
            draw();
        }
        return m_frames - before;
    }
};

TEST_F(Frames, AreNoneOnTheHardwareCheckAtRest) {
    launch();
    EXPECT_EQ(framesOfTwoSeconds(), 0);
}

TEST_F(Frames, AreOneForGlowAndParticlesTogether) {
    launchChecked();
    EXPECT_EQ(framesOfTwoSeconds(), 40);
}

TEST_F(Frames, AreNoneWithReducedMotion) {
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
    EXPECT_EQ(framesOfTwoSeconds(), 40);
}

TEST_F(Frames, AreNoneWhileHidden) {
    launchIntoControlPanel();
    const std::size_t timers = m_machine.runLoop.pendingCount();
    m_window->window().hide();
    draw();
    EXPECT_EQ(m_machine.runLoop.pendingCount(), timers - 1) << "the glow's timer ends too";
    EXPECT_EQ(framesOfTwoSeconds(), 0);
    m_window->window().show();
    EXPECT_EQ(framesOfTwoSeconds(), 40);
}

TEST_F(Frames, AreNoneDuringAScanInACoveredWindow) {
    launch();
    press(check);
    int before = m_frames;
    animate(250);
    EXPECT_GT(m_frames, before);
    m_desktop.covered = true;
    settle();
    before = m_frames;
    animate(250);
    EXPECT_EQ(m_frames, before);
}

} // namespace
} // namespace quorvane
