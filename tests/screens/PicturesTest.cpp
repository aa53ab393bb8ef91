#include "tests/screens/ScreensFixture.h"

namespace quorvane {
namespace {

// Leaves pictures of every screen for a person to look at, and holds them to the colours that are
// promised. Each test runs at both scales.
class Pictures : public ScreensTest {
protected:
    Pictures() {
        m_effects = {.keyboard = [this] { return m_keyboard; },
                     .fan = [this] { return m_fan; },
                     .bsod = [] { return std::make_shared<FakeEffect>(); },
                     .freeze = [] { return std::make_shared<FakeEffect>(); }};
        m_withStartup = true;
        m_machine.bundle.addResource("logo", "png", QUORVANE_SOURCE_RESOURCES "/logo.png");
    }

    // To where glows are at their fullest.
    void glow() {
        m_machine.runLoop.advance(1.5);
        settle();
    }
};

TEST_F(Pictures, OfTheHardwareCheck) {
    launch();
    savePicture("hardware-check");
    press("CHECK HARDWARE 🔍");
    draw();
    savePicture("hardware-check-scanning");
    m_machine.runLoop.advance(1.5);
    settle();
    savePicture("hardware-check-results");
}

TEST_F(Pictures, OfTheWarning) {
    launchChecked();
    savePicture("warning");
    glow();
    savePicture("warning-glow");
    type(Qt::Key_Tab);
    settle();
    savePicture("warning-focus");
}

TEST_F(Pictures, OfTheControlPanel) {
    launchIntoControlPanel();
    toggle("Build quality");
    toggle("Thermals");
    settle();
    savePicture("control-panel");
    glow();
    type(Qt::Key_Tab);
    type(Qt::Key_Tab);
    settle();
    savePicture("control-panel-glow-focus");
    m_keyboard->canStart = false;
    toggle("Keyboard");
    settle();
    savePicture("control-panel-hint");
    press("About Build quality");
    settle();
    savePicture("info-popup");
}

TEST_F(Pictures, OfTheWarningWithoutItsLogo) {
    m_machine.bundle.removeResources();
    launchChecked();
    savePicture("warning-without-logo");
}

TEST_F(Pictures, OfTheControlPanelWithTheFirstEffectAlone) {
    m_effects = {};
    m_withStartup = false;
    launchIntoControlPanel();
    savePicture("control-panel-first-effect");
}

} // namespace
} // namespace quorvane
