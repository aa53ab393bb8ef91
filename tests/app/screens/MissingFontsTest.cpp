#include "tests/app/screens/ScreensFixture.h"

#include <QFontDatabase>

namespace quorvane {
namespace {

// Holds in any font. It also runs where there is one plain font alone.
class MissingFonts : public ScreensTest {
protected:
    void SetUp() override {
        const bool areMissing = qEnvironmentVariableIsSet("FONTCONFIG_FILE");
        ASSERT_NE(QFontDatabase::hasFamily("Inter"), areMissing);
        ASSERT_NE(QFontDatabase::hasFamily("Quicksand"), areMissing);
        m_effects = {.keyboard = [this] { return m_keyboard; },
                     .fan = [this] { return m_fan; },
                     .bsod = [] { return std::make_shared<FakeEffect>(); },
                     .freeze = [] { return std::make_shared<FakeEffect>(); }};
    }

    // Nothing reaches beyond the window's edges.
    void expectTidy(std::size_t textCount, std::size_t buttonCount) {
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

TEST_F(MissingFonts, LeaveTheWarningTidy) {
    launchChecked();
    expectTidy(6, 1);
    EXPECT_LT(placeOf("EVERY SINGLE DAY.").bottom(), placeOf("MAKE ME SUFFER 😭").top());
}

TEST_F(MissingFonts, LeaveTheControlPanelTidy) {
    launchIntoControlPanel();
    expectTidy(5, 7);
    EXPECT_LT(placeOf("Startup").bottom(), placeOf("STOP, I'M SUFFERING 😭").top());
}

} // namespace
} // namespace quorvane
