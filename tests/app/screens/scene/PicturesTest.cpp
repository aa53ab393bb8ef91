#include "tests/app/screens/views/LayoutFixture.h"

namespace quorvane {
namespace {

// Checks every screen as a whole, and saves its picture for people to look at.
class Pictures : public LayoutTest {
protected:
    Pictures() {
        m_machine.bundle.addResource("logo", "png", QUORVANE_SOURCE_RESOURCES "/logo.png");
    }

    // Where the logo is: 130 points high, below "CAUTION", in the middle.
    QRectF placeOfTheLogo() {
        return {275 - 130 * 4 / 3.0 / 2, placeOf("CAUTION").bottom() + 14, 130 * 4 / 3.0, 130};
    }

    // At a place of the logo's own 480 by 360 points.
    QColor atLogo(double x, double y) {
        return at(placeOfTheLogo().topLeft() + QPointF(x, y) * 130 / 360);
    }

    // The percentage of a place that is near that colour.
    double shareOf(const QColor& color, const QRectF& place) {
        return 100.0 * countOf(color, place) / (place.width() * place.height());
    }
};

TEST_F(Pictures, TheHardwareCheckIsInColour) {
    launch();
    savePicture("hardware-check");
    EXPECT_GT(countOf(QColor(132, 166, 180), placeOf("🔧"), 40), 100) << "in colour";
    EXPECT_GT(shareOf(Qt::white, placeOf("HARDWARE CHECK")), 5);
    press(check);
    draw();
    savePicture("hardware-check-scanning");
    m_machine.runLoop.advance(1.5);
    settle();
    savePicture("hardware-check-results");
}

TEST_F(Pictures, MarksHaveTheirColours) {
    launch();
    runCheck();
    settle();
    const auto markOf = [&](const std::string& row) {
        return QRectF(70, placeOf(row).top(), 24, placeOf(row).height() + 16);
    };
    const QColor cross(244, 67, 54);
    const QColor tick(124, 179, 66);
    EXPECT_GT(countOf(cross, markOf("Lid creak"), 30), 20);
    EXPECT_EQ(countOf(tick, markOf("Lid creak"), 30), 0);
    EXPECT_GT(countOf(tick, markOf("Launch at login"), 30), 20);
    EXPECT_EQ(countOf(cross, markOf("Launch at login"), 30), 0);
}

TEST_F(Pictures, ResultsAreGreenIfPassedAndYellowIfFailed) {
    launch();
    runCheck();
    settle();
    for (const auto& [words, color] :
         {std::pair("Force Touch trackpad detected", QColor("#34c759")),
          {"Lid sensor not found — this feature won't be available", QColor("#ffcc00")}}) {
        const QRectF place = placeOf(words);
        const QColor ground = at({place.left() - 4, place.center().y()});
        EXPECT_GT(countOf(over(ground, color, 0.7), place, 3), 100) << words;
    }
}

TEST_F(Pictures, TheWarningSignIsInColour) {
    launchChecked();
    savePicture("warning");
    EXPECT_GT(countOf(QColor(255, 204, 50), placeOf("⚠️")), 1000);
    m_machine.runLoop.advance(1.5);
    draw();
    savePicture("warning-glow");
    type(Qt::Key_Tab);
    draw();
    savePicture("warning-focus");
}

TEST_F(Pictures, TheLogoHasItsColoursAndPlace) {
    launchChecked();
    expectNear(atLogo(200, 340), QColor("#cfc2a2"), 30);
    expectNear(atLogo(240, 322), QColor("#c3b692"), 4);
    expectNear(atLogo(240, 350), QColor("#cfc2a2"), 4);
    expectNear(atLogo(120, 90), QColor(46, 190, 213), 12);
    expectNear(atLogo(200, 220), QColor(33, 105, 201), 12);
    expectNear(atLogo(20, 20), besideOf("CAUTION"), 3);
    const QRectF place = placeOfTheLogo();
    EXPECT_EQ(placeOf("YOU ARE ABOUT TO SEE WHAT").top() - place.bottom(), 14);
}

TEST_F(Pictures, TheLogoHasAShadow) {
    launchChecked();
    const QColor night(20, 20, 50);
    const QRectF place = placeOfTheLogo();
    const auto below = [&](double distance) { return at({275, place.top() + 129 + distance}); };
    // The shadow of 0.3 is at half where its own edge is, 4 points below the logo's.
    expectNear(below(3), over(night, Qt::black, 0.15), 2);
    expectNear(below(7), over(night, Qt::black, 0.07), 2);
    expectNear(below(14), night, 1);
    expectNear(at({275, place.top() + 4 - 8}), QColor(18, 18, 47), 1);
}

TEST_F(Pictures, AMissingLogoLeavesNeitherGapNorShadow) {
    m_machine.bundle.removeResources();
    launchChecked();
    savePicture("warning-without-logo");
    const QRectF sentence = placeOf("YOU ARE ABOUT TO SEE WHAT");
    const QRectF gap(20, placeOf("CAUTION").bottom(), 510,
                     sentence.top() - placeOf("CAUTION").bottom());
    EXPECT_EQ(gap.height(), 14);
    EXPECT_EQ(countOf(QColor(19, 19, 48), gap, 2), 510 * 14) << "neither logo nor shadow";
}

TEST_F(Pictures, TheControlPanelIsInColour) {
    launchIntoControlPanel();
    toggle("Build quality");
    toggle("Thermals");
    settle();
    savePicture("control-panel");
    EXPECT_GT(countOf(QColor(222, 229, 233), placeOf("💀")), 800) << "in colour";
    m_machine.runLoop.advance(1.5);
    type(Qt::Key_Tab);
    type(Qt::Key_Tab);
    settle();
    savePicture("control-panel-glow-focus");
    m_keyboard->canStart = false;
    m_keyboard->whatKeepsItFromBeingNoticed =
        "Accessibility permission needed — enable in System Settings";
    toggle("Keyboard");
    settle();
    savePicture("control-panel-hint");
}

TEST_F(Pictures, TheBannerIsGreenWithRoundCorners) {
    launchIntoControlPanel();
    const QRectF heading = placeOf("WINDOWS MODE: ENABLED");
    const QRectF last = placeOf("Your MacBook is now officially a Windows laptop.");
    const QColor green("#34c759");
    const QRectF banner(last.left() - 22, heading.top() - 14, last.width() + 44,
                        last.bottom() - heading.top() + 28);
    expectNear(at({banner.left() + 2, banner.center().y()}), green);
    expectNear(at({banner.right() - 3, banner.center().y()}), green);
    expectNear(at({banner.center().x(), banner.top() + 2}), green);
    expectNear(at({banner.center().x(), banner.bottom() - 3}), green);
    EXPECT_LT(at({banner.left() - 2, banner.center().y()}).green(), 60);
    EXPECT_LT(at({banner.center().x(), banner.bottom() + 3}).green(), 60);
    // With a corner radius of 14, points nearer than 4.1 to both edges are outside.
    EXPECT_LT(at(banner.topLeft() + QPointF(2, 2)).green(), 60);
    expectNear(at(banner.topLeft() + QPointF(7, 7)), green);
    EXPECT_GT(shareOf(Qt::black, placeOf("WINDOWS MODE: ENABLED")), 10);
    EXPECT_GT(shareOf(Qt::black, placeOf("🎉 Congratulations!")), 5);
}

TEST_F(Pictures, WithoutOtherEffectsThereAreNoOtherRows) {
    m_effects = {};
    launchIntoControlPanel();
    savePicture("control-panel-without-effects");
    const QRectF row = placeOf("Startup");
    const QRectF rest(60, row.bottom() + 2, 430, placeOf(stop).top() - row.bottom() - 4);
    EXPECT_EQ(countOf(Qt::white, rest, 60), 0) << "no other row";
}

TEST_F(Pictures, HeavyTextCoversAboutAQuarterOfItsPlace) {
    launchChecked();
    const double share = shareOf(Qt::white, placeOf("CAUTION"));
    EXPECT_GT(share, 24);
    EXPECT_LT(share, 31);
}

TEST_F(Pictures, TheInfoPopupHasItsSizeAndColours) {
    launchIntoControlPanel();
    const QRectF button = placeOf(stop);
    openInfo("Build quality");
    savePicture("info-popup");
    // The screen below is darkened by 0.6.
    expectNear(at({5, 390}), {8, 8, 20}, 1);
    expectNear(at({button.left() + 40, button.center().y()}), {102, 24, 19}, 2);
    const QRectF ok = placeOf("OK");
    const QColor ground("#23233a");
    EXPECT_EQ(ok.size(), QSizeF(340 - 48, 36));
    EXPECT_EQ(ok.center().x(), 275);
    expectNear(at({107, 390}), ground, 1);
    expectNear(at({442, 390}), ground, 1);
    EXPECT_LT(at({103, 350}).red(), 30) << "340 points wide";
    EXPECT_LT(at({446, 350}).red(), 30);
    const QRectF title = placeOfText("Build Quality");
    EXPECT_EQ(lookOf("Build Quality"), (Look{.size = 17, .weight = QFont::Bold}));
    EXPECT_GT(shareOf(Qt::white, title), 3);
    expectNear(at({275, title.top() - 22}), ground, 1);
    EXPECT_LT(at({275, title.top() - 27}).blue(), 57) << "24 points above the title";
    expectNear(at({275, ok.bottom() + 22}), ground, 1);
    expectNear(at({ok.left() + 20, ok.center().y()}), QColor("#007aff"), 1);
    EXPECT_EQ(lookOf("OK"), (Look{.size = 14, .weight = QFont::DemiBold}));
    EXPECT_GT(countOf(Qt::white, ok.adjusted(100, 5, -100, -5)), 20);
}

TEST_F(Pictures, TheInfoPopupsWordsAreCentredAndWrapped) {
    launchIntoControlPanel();
    openInfo("Build quality");
    const std::string words = "Premium hinge quality simulation. Experience the authentic build "
                              "quality of a real Windows laptop.\n\nTry moving your laptop lid to "
                              "feel the difference.";
    EXPECT_EQ(lookOf(words), (Look{.size = 13, .opacity = 0.85}));
    const QRectF place = placeOf(words);
    EXPECT_EQ(place.width(), 292);
    EXPECT_EQ(text(words)->property("horizontalAlignment").toInt(), Qt::AlignHCenter);
    EXPECT_EQ(text("Build Quality")->property("horizontalAlignment").toInt(), Qt::AlignHCenter);
    EXPECT_EQ(text(words)->property("lineHeight").toDouble(), 1.15);
    EXPECT_GT(place.height(), 80) << "wrapped into several lines";
    EXPECT_EQ(place.top() - placeOfText("Build Quality").bottom(), 12);
    EXPECT_EQ(placeOf("OK").top() - place.bottom(), 12 + 2 + 12);
    EXPECT_GT(shareOf(over(QColor("#23233a"), Qt::white, 0.85), placeOf(words)), 1);
    EXPECT_EQ(countOf(Qt::white, place, 10), 0);
}

} // namespace
} // namespace quorvane
