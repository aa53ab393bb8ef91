#include "tests/app/screens/ScreensFixture.h"

#include <QFontDatabase>

namespace quorvane {
namespace {

// These hold with any font. CTest also runs them where a plain font is the only one.
class MissingFonts : public ScreensTest {
protected:
    void SetUp() override {
        const bool areMissing = qEnvironmentVariableIsSet("FONTCONFIG_FILE");
        ASSERT_NE(QFontDatabase::hasFamily("Inter"), areMissing);
        ASSERT_NE(QFontDatabase::hasFamily("Quicksand"), areMissing);
        withAllEffects();
    }

    void expectAllWithinWindow(std::size_t textCount, std::size_t buttonCount) {
        std::vector<std::string> all = texts();
        EXPECT_EQ(all.size(), textCount);
        EXPECT_EQ(buttons().size(), buttonCount);
        for (const auto& name : buttons())
            all.push_back(name);
        for (const auto& name : all) {
            EXPECT_TRUE(QRectF(0, 0, 550, 780).contains(placeOf(name))) << name;
            EXPECT_FALSE(placeOf(name).isEmpty()) << name;
        }
    }
};

TEST_F(MissingFonts, LeaveTheWarningWithinTheWindow) {
    launchChecked();
    expectAllWithinWindow(6, 1);
    EXPECT_LT(placeOf("EVERY SINGLE DAY.").bottom(), placeOf(enter).top());
}

TEST_F(MissingFonts, LeaveTheControlPanelWithinTheWindow) {
    launchIntoControlPanel();
    expectAllWithinWindow(5, 7);
    EXPECT_LT(placeOf("Startup").bottom(), placeOf(stop).top());
}

} // namespace
} // namespace quorvane
