#include "tests/app/screens/ScreensFixture.h"

#include <QTransform>

#include <algorithm>
#include <utility>

namespace quorvane {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class HardwareCheckScreen : public ScreensTest {};

TEST_F(HardwareCheckScreen, IsWhatAFirstLaunchShows) {
    launch();
    EXPECT_THAT(
        texts(),
        ElementsAre("🔧", "HARDWARE CHECK",
                    "Before we begin, let's make sure\nyour Mac is ready for the experience."));
    EXPECT_THAT(buttons(), ElementsAre(check));
}

TEST_F(HardwareCheckScreen, ScansForASecondAndAHalf) {
    launch();
    press(check);
    EXPECT_THAT(texts(), Contains("Scanning hardware..."));
    EXPECT_THAT(buttons(), IsEmpty());
    m_machine.runLoop.advance(1.49);
    EXPECT_THAT(texts(), Contains("Scanning hardware..."));
    m_machine.runLoop.advance(0.02);
    EXPECT_THAT(texts(), Not(Contains("Scanning hardware...")));
    EXPECT_THAT(buttons(), ElementsAre("CONTINUE"));
}

TEST_F(HardwareCheckScreen, TurnsItsSpinnerOnlyWhileItScans) {
    launch();
    press(check);
    draw();
    const QPointF middle = placeOf("Scanning").center();
    // Counted clockwise from the top.
    const auto brightestSpoke = [&] {
        const QImage picture = picture1x();
        int brightest = 0;
        int best = 0;
        for (int spoke = 0; spoke < 12; ++spoke) {
            const QPointF way = QTransform().rotate(30 * spoke).map(QPointF(0, -18));
            const QColor color = picture.pixelColor((middle + way).toPoint());
            if (std::exchange(best, std::max(best, color.red())) < color.red())
                brightest = spoke;
        }
        return brightest;
    };
    EXPECT_EQ(brightestSpoke(), 11);
    // One spoke every 83 ms.
    animate(80);
    EXPECT_EQ(brightestSpoke(), 11);
    for (const int next : {0, 1, 2}) {
        animate(83);
        EXPECT_EQ(brightestSpoke(), next);
    }
    m_machine.runLoop.advance(1.5);
    settle();
    const int before = m_frames;
    animate(500);
    EXPECT_EQ(m_frames, before);
}

TEST_F(HardwareCheckScreen, ShowsWhatFailed) {
    m_machine.system.model = "Precision 5570";
    launch();
    runCheck();
    settle();
    EXPECT_THAT(
        texts(),
        ElementsAre("🔧", "HARDWARE CHECK",
                    "Before we begin, let's make sure\nyour Mac is ready for the experience.", "❌",
                    "Lid creak", "Lid sensor not found — this feature won't be available", "❌",
                    "Keyboard crack", "Accessibility permission needed — enable in System Settings",
                    "❌", "Trackpad vibration", "No built-in trackpad — vibration won't work", "✅",
                    "Fan noise", "Ready", "✅", "Startup sound", "Ready", "✅", "Launch at login",
                    "Ready"));
}

TEST_F(HardwareCheckScreen, ShowsThatALidSensorIsThere) {
    m_machine.hid.addDevice(0x8104)->setAngle(90);
    launch();
    runCheck();
    settle();
    EXPECT_THAT(texts(), Contains("Lid sensor detected"));
    EXPECT_THAT(texts(), Contains("✅").Times(5));
}

TEST_F(HardwareCheckScreen, ShowsWhatPassed) {
    m_machine.accessibility.trusted = true;
    launch();
    runCheck();
    settle();
    const auto shown = texts();
    EXPECT_THAT(shown, Contains("Accessibility granted"));
    EXPECT_THAT(shown, Contains("Force Touch trackpad detected"));
    EXPECT_THAT(shown, Contains("❌").Times(1));
    EXPECT_THAT(shown, Contains("✅").Times(5));
}

TEST_F(HardwareCheckScreen, CanBeLeftWithTheKeyboardAlone) {
    launch();
    type(Qt::Key_Tab);
    EXPECT_EQ(focused(), check);
    type(Qt::Key_Space);
    m_machine.runLoop.advance(1.5);
    settle();
    type(Qt::Key_Tab);
    EXPECT_EQ(focused(), "CONTINUE");
    type(Qt::Key_Return);
    settle();
    EXPECT_THAT(texts(), Contains("CAUTION"));
    EXPECT_TRUE(m_machine.userDefaults.boolForKey(ContentView::hardwareCheckedKey));
}

TEST_F(HardwareCheckScreen, IsBlackAboveAndBelowABlueMiddle) {
    launch();
    EXPECT_LE(colorAt(275, 0).lightness(), 1);
    // 0.6 of #007aff over black.
    const QColor middle = colorAt(5, 390);
    EXPECT_EQ(middle.red(), 0);
    EXPECT_NEAR(middle.green(), 73, 2);
    EXPECT_NEAR(middle.blue(), 153, 2);
    EXPECT_NEAR(colorAt(5, 195).blue(), 76, 2);
    EXPECT_LE(colorAt(275, 779).lightness(), 1);
}

} // namespace
} // namespace quorvane
