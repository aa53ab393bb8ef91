#include "tests/app/screens/views/LayoutFixture.h"

namespace quorvane {
namespace {

const QColor red("#ff3b30");
const QColor yellow("#ffcc00");
const QColor green("#34c759");
const QColor cyan("#32ade6");

class Layout : public LayoutTest {};

TEST_F(Layout, TheHardwareCheckHasItsFontsAndColours) {
    launch();
    EXPECT_EQ(lookOf("🔧").size, 70);
    EXPECT_EQ(lookOf("HARDWARE CHECK"), (Look{.size = 30}));
    EXPECT_EQ(lookOf("Before we begin, let's make sure\nyour Mac is ready for the experience."),
              (Look{.size = 15, .opacity = 0.7}));
    EXPECT_EQ(lookOf(check), (Look{.size = 20, .weight = QFont::Black}));
    const QRectF button = placeOf(check);
    EXPECT_EQ(button.left(), 30);
    EXPECT_EQ(button.width(), 490);
    EXPECT_EQ(button.height(), text(check)->height() + 2 * 16);
    expectNear(fillOf(check), over(besideOf(check), cyan, 0.8));
    EXPECT_NEAR(placeOf("🔧").top() + button.bottom(), 780, 2) << "the stack is centred";
}

TEST_F(Layout, TheHardwareCheckHasItsDistances) {
    m_desktop.motionReduced = true;
    launch();
    const std::string words =
        "Before we begin, let's make sure\nyour Mac is ready for the experience.";
    EXPECT_NEAR(placeOf("🔧").center().x(), 275, 0.5);
    EXPECT_NEAR(placeOf("HARDWARE CHECK").center().x(), 275, 0.5);
    EXPECT_EQ(text(words)->property("horizontalAlignment").toInt(), Qt::AlignHCenter);
    EXPECT_EQ(placeOf("HARDWARE CHECK").top() - placeOf("🔧").bottom(), 18);
    EXPECT_EQ(placeOf(words).top() - placeOf("HARDWARE CHECK").bottom(), 18);
    EXPECT_EQ(placeOf(check).top() - placeOf(words).bottom(), 18 + 6 + 18);
    press(check);
    draw();
    EXPECT_EQ(placeOf("Scanning").top() - placeOf(words).bottom(), 18 + 6 + 18);
    EXPECT_EQ(placeOf("Scanning hardware...").top() - placeOf("Scanning").bottom(), 16);
    EXPECT_NEAR(placeOf("Scanning").center().x(), 275, 0.5);
    EXPECT_NEAR(placeOf("Scanning hardware...").center().x(), 275, 0.5);
}

TEST_F(Layout, TheScanHasItsFontAndSpinner) {
    m_desktop.motionReduced = true;
    launch();
    press(check);
    settle();
    EXPECT_EQ(lookOf("Scanning hardware..."), (Look{.size = 14}));
    EXPECT_EQ(placeOf("Scanning").size(), QSizeF(48, 48)) << "half as large again as 32";
}

TEST_F(Layout, TheResultsHaveTheirFontsColoursAndDistances) {
    launch();
    m_desktop.motionReduced = true;
    runCheck();
    settle();
    EXPECT_EQ(lookOf("Lid creak"), (Look{.size = 14, .weight = QFont::Bold}));
    EXPECT_EQ(lookOf("Lid sensor not found — this feature won't be available"),
              (Look{.size = 11, .weight = QFont::Medium, .color = yellow, .opacity = 0.7}));
    EXPECT_EQ(lookOf("Force Touch trackpad detected"),
              (Look{.size = 11, .weight = QFont::Medium, .color = green, .opacity = 0.7}));
    EXPECT_EQ(lookOf("❌").size, 16);
    EXPECT_EQ(lookOf("✅").size, 16);
    expectNear(fillOf("CONTINUE"), over(besideOf("CONTINUE"), green, 0.8));
    EXPECT_EQ(placeOf("Lid creak").left(), placeOf("Launch at login").left());
    const QRectF mark = placeOfText("❌");
    const QRectF feature = placeOf("Lid creak");
    const QRectF result = placeOf("Lid sensor not found — this feature won't be available");
    EXPECT_EQ(mark.left(), 30 + 40);
    EXPECT_EQ(feature.left() - mark.right(), 12);
    EXPECT_EQ(result.left(), feature.left());
    EXPECT_EQ(result.top() - feature.bottom(), 2);
    EXPECT_NEAR(mark.center().y(), (feature.top() + result.bottom()) / 2, 1);
    EXPECT_EQ(placeOf("Keyboard crack").top() - result.bottom(), 14);
    EXPECT_EQ(placeOf("CONTINUE").top() - placeOf("Launch at login").bottom() - 2,
              result.height() + 26);
    EXPECT_EQ(placeOf("CONTINUE").left(), 30);
    EXPECT_EQ(placeOf("CONTINUE").width(), 490);
}

TEST_F(Layout, TheWarningHasItsFontsAndColours) {
    m_machine.bundle.addResource("logo", "png", QUORVANE_SOURCE_RESOURCES "/logo.png");
    launchChecked();
    const Look sentence{.size = 18};
    EXPECT_EQ(lookOf("⚠️").size, 80);
    EXPECT_EQ(text("⚠️")->property("glowColor").value<QColor>(), yellow);
    EXPECT_EQ(lookOf("CAUTION"), (Look{.size = 36, .weight = QFont::Black}));
    EXPECT_EQ(lookOf("YOU ARE ABOUT TO SEE WHAT"), (Look{.size = 18, .weight = QFont::Black}));
    EXPECT_EQ(lookOf("MILLIONS").size, 42);
    EXPECT_EQ(lookOf("OF WINDOWS USERS EXPERIENCE"), sentence);
    EXPECT_EQ(lookOf("EVERY SINGLE DAY."), sentence);
    EXPECT_EQ(lookOf(enter), (Look{.size = 20, .weight = QFont::Black}));
    EXPECT_EQ(placeOf(enter).width(), 490);
    EXPECT_EQ(placeOf(enter).height(), text(enter)->height() + 2 * 16);
    expectNear(fillOf(enter), red);
    EXPECT_GE(placeOf("⚠️").top(), 30);
    EXPECT_LE(placeOf(enter).bottom(), 750);
}

TEST_F(Layout, TheWarningHasItsDistances) {
    launchChecked();
    const std::vector<std::string> lines{"⚠️",
                                         "CAUTION",
                                         "YOU ARE ABOUT TO SEE WHAT",
                                         "MILLIONS",
                                         "OF WINDOWS USERS EXPERIENCE",
                                         "EVERY SINGLE DAY."};
    for (std::size_t i = 0; i < lines.size(); ++i) {
        EXPECT_NEAR(placeOf(lines[i]).center().x(), 275, 0.5) << lines[i];
        if (i > 0) {
            EXPECT_EQ(placeOf(lines[i]).top() - placeOf(lines[i - 1]).bottom(), 14) << lines[i];
        }
    }
    EXPECT_EQ(placeOf(enter).top() - placeOf("EVERY SINGLE DAY.").bottom(), 14 + 10 + 14);
}

TEST_F(Layout, AMissingLogoLeavesNoGap) {
    launchChecked();
    const double gap = placeOf("YOU ARE ABOUT TO SEE WHAT").top() - placeOf("CAUTION").bottom();
    EXPECT_LT(gap, 40);
    EXPECT_NEAR(placeOf("⚠️").top() + placeOf(enter).bottom(), 780, 2);
}

TEST_F(Layout, MillionsGoesFromGreenThroughCyanToBlue) {
    launchChecked();
    const QRectF place = placeOf("MILLIONS");
    // The stems of the first, a middle and the last letter: the brightest pixels there.
    const auto brightest = [&](double from, double to) {
        QColor result = Qt::black;
        for (double x = place.left() + from * place.width(); x < place.left() + to * place.width();
             ++x)
            if (const QColor color = at({x, place.center().y()}); color.value() > result.value())
                result = color;
        return result;
    };
    const QColor first = brightest(0, 0.1);
    EXPECT_GT(first.green(), first.blue() + 40);
    const QColor middle = brightest(0.42, 0.58);
    EXPECT_GT(middle.blue(), 190);
    EXPECT_GT(middle.green(), 140);
    const QColor last = brightest(0.88, 1);
    EXPECT_GT(last.blue(), last.green() + 70);
    EXPECT_LT(last.red(), 40);
}

TEST_F(Layout, TheControlPanelHasItsFontsAndColours) {
    launchIntoControlPanel();
    EXPECT_EQ(lookOf("💀").size, 60);
    EXPECT_EQ(lookOf("SIMULATION ACTIVE"),
              (Look{.size = 28, .weight = QFont::Black, .color = red}));
    EXPECT_EQ(lookOf("WINDOWS MODE: ENABLED"),
              (Look{.size = 16, .weight = QFont::Black, .color = Qt::black}));
    EXPECT_EQ(lookOf("🎉 Congratulations!"),
              (Look{.size = 14, .weight = QFont::Bold, .color = Qt::black}));
    EXPECT_EQ(lookOf("Your MacBook is now officially a Windows laptop."),
              (Look{.size = 14, .weight = QFont::Bold, .color = Qt::black}));
    EXPECT_TRUE(text("Your MacBook is now officially a Windows laptop.")
                    ->property("font")
                    .value<QFont>()
                    .italic());
    expectNear(at(placeOf("WINDOWS MODE: ENABLED").topLeft() + QPointF(-10, 8)), green);
    EXPECT_EQ(placeOf("🎉 Congratulations!").top() - placeOf("WINDOWS MODE: ENABLED").bottom(), 6);
}

TEST_F(Layout, TheControlPanelHasItsDistances) {
    launchIntoControlPanel();
    const QRectF heading = placeOf("WINDOWS MODE: ENABLED");
    const QRectF last = placeOf("Your MacBook is now officially a Windows laptop.");
    for (const char* line :
         {"💀", "SIMULATION ACTIVE", "WINDOWS MODE: ENABLED", "🎉 Congratulations!",
          "Your MacBook is now officially a Windows laptop."})
        EXPECT_NEAR(placeOf(line).center().x(), 275, 0.5) << line;
    EXPECT_EQ(placeOf("SIMULATION ACTIVE").top() - placeOf("💀").bottom(), 18);
    EXPECT_EQ(heading.top() - 14 - placeOf("SIMULATION ACTIVE").bottom(), 18);
    EXPECT_EQ(placeOf("Build quality").top() - last.bottom() - 14, 18 + 8 + 18);
    EXPECT_NEAR(placeOf("💀").top() - 30, placeOf(stop).top() - placeOf("Startup").bottom(), 2)
        << "what is above the stop button is centred";
}

TEST_F(Layout, TheRowsHaveTheirFontsAndDistances) {
    launchIntoControlPanel();
    const std::vector<std::string> rows = switches();
    ASSERT_EQ(rows.size(), 6U);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const QRectF place = placeOf(rows[i]);
        EXPECT_EQ(place.size(), QSizeF(42, 26)) << rows[i];
        EXPECT_EQ(place.right(), 480) << rows[i];
        if (i > 0) {
            EXPECT_EQ(place.top() - placeOf(rows[i - 1]).bottom(), 10) << rows[i];
        }
        EXPECT_EQ(lookOf(rows[i]), (Look{.size = 14, .weight = QFont::DemiBold})) << rows[i];
        const QQuickItem* label = text(rows[i]);
        EXPECT_EQ(label->mapToScene({0, 0}).x(), 30 + 40 + 18 + 10) << rows[i];
        const QRectF info = placeOf("About " + rows[i]);
        EXPECT_EQ(info.left() - label->mapToScene({label->width(), 0}).x(), 10) << rows[i];
        EXPECT_EQ(info.width(), 13) << rows[i];
    }
}

TEST_F(Layout, TheStopButtonHasItsFontPlaceAndColour) {
    launchIntoControlPanel();
    const QRectF place = placeOf(stop);
    EXPECT_EQ(lookOf(stop), (Look{.size = 20, .weight = QFont::Black}));
    EXPECT_EQ(place.left(), 30 + 30);
    EXPECT_EQ(place.right(), 550 - 30 - 30);
    EXPECT_EQ(place.bottom(), 780 - 30 - 20);
    EXPECT_EQ(place.height(), text(stop)->height() + 2 * 14);
    expectNear(fillOf(stop), red);
}

} // namespace
} // namespace quorvane
