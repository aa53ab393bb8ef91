#include "tests/screens/ScreensFixture.h"

#include <QFontDatabase>

namespace quorvane {
namespace {

// To be run where there is but one plain font.
class MissingFonts : public ScreensTest {
protected:
    void SetUp() override {
        ASSERT_FALSE(QFontDatabase::hasFamily("Inter") || QFontDatabase::hasFamily("Quicksand"))
            << "the fonts are there";
        m_effects = {.keyboard = [this] { return m_keyboard; },
                     .fan = [this] { return m_fan; },
                     .bsod = [] { return std::make_shared<FakeEffect>(); },
                     .freeze = [] { return std::make_shared<FakeEffect>(); }};
        m_withStartup = true;
    }

    // Nothing reaches beyond the window's edges.
    void expectTidy() {
        for (const auto& name : texts())
            EXPECT_TRUE(QRectF(0, 0, 550, 780).contains(placeOf(name))) << name;
        for (const auto& name : buttons())
            EXPECT_TRUE(QRectF(0, 0, 550, 780).contains(placeOf(name))) << name;
    }
};

TEST_F(MissingFonts, LeaveTheWarningTidy) {
    launchChecked();
    savePicture("plain-font-warning");
    expectTidy();
    EXPECT_LT(placeOf("EVERY SINGLE DAY.").bottom(), placeOf("MAKE ME SUFFER 😭").top());
}

TEST_F(MissingFonts, LeaveTheControlPanelTidy) {
    launchIntoControlPanel();
    savePicture("plain-font-control-panel");
    expectTidy();
    EXPECT_LT(placeOf("Startup").bottom(), placeOf("STOP, I'M SUFFERING 😭").top());
}

} // namespace
} // namespace quorvane
