#include "tests/platform/linux/overlays/LinuxScreensFixture.h"
#include "tests/support/Waiting.h"

#include <QFont>
#include <QPainter>
#include <sstream>

#include <gmock/gmock.h>

namespace quorvane {

namespace {

using testing::ElementsAre;

/// A text in white over the blue, drawn with QPainter from `x` on.
QImage plainly(const QString& text, int size, QFont::Weight weight, double opacity, int x = 100) {
    QImage picture(1280, 200, QImage::Format_RGB32);
    picture.fill(blue);
    QPainter painter(&picture);
    QFont font("Inter");
    font.setPixelSize(size);
    font.setWeight(weight);
    font.setHintingPreference(QFont::PreferVerticalHinting);
    painter.setFont(font);
    painter.setPen(QColor::fromRgbF(1, 1, 1, static_cast<float>(opacity)));
    painter.drawText(x, 140, text);
    return picture;
}

/// The amount of white over the blue, whose red is 0.
double inkIn(const QImage& picture, const QRect& part) {
    double ink = 0;
    for (int y = part.top(); y <= part.bottom(); ++y)
        for (int x = part.left(); x <= part.right(); ++x)
            ink += qRed(picture.pixel(x, y));
    return ink;
}

/// The largest difference of a pixel in two pictures, of 255.
int mostDifferent(const QImage& one, const QImage& other) {
    int most = 0;
    for (int y = 0; y < one.height(); ++y)
        for (int x = 0; x < one.width(); ++x)
            most = std::max(most, std::abs(qRed(one.pixel(x, y)) - qRed(other.pixel(x, y))));
    return most;
}

void expectLooksLike(const QImage& picture, const QRect& line, const QImage& expected) {
    const QRect plain = drawnIn(expected, expected.rect());
    EXPECT_NEAR(line.left(), plain.left(), 1);
    EXPECT_NEAR(line.width(), plain.width(), 2);
    EXPECT_NEAR(line.height(), plain.height(), 1);
    EXPECT_NEAR(inkIn(picture, line) / inkIn(expected, plain), 1, 0.03);
}

} // namespace

TEST_F(LinuxScreensTest, RingIsFilledFromTheTopClockwise) {
    for (const auto& [progress, done] :
         {std::pair(0.0, 0U), std::pair(0.25, 10U), std::pair(0.5, 20U), std::pair(1.0, 40U)}) {
        m_stop->progress = progress;
        const auto panel = showStopScreen();
        EXPECT_EQ(ringIn(m_desktop.look()), std::string(done, '#') + std::string(40 - done, '.'));
        panel->orderOut();
    }
}

TEST_F(LinuxScreensTest, RingHasNoArcAt0AndNoGapAt1) {
    for (const bool complete : {false, true}) {
        m_stop->progress = complete ? 1 : 0;
        const auto panel = showStopScreen();
        const QImage picture = m_desktop.look();
        const double middle = ringCenterIn(picture).y();
        for (int i = 0; i < 1000; ++i) {
            const double angle = 2 * M_PI * i / 1000;
            int brightest = 0;
            for (int radius = 32; radius <= 38; ++radius)
                brightest = std::max(
                    brightest,
                    qRed(picture.pixel(static_cast<int>(135 + radius * std::sin(angle)),
                                       static_cast<int>(middle - radius * std::cos(angle)))));
            ASSERT_NEAR(brightest, complete ? 255 : 64, 3) << i;
        }
        panel->orderOut();
    }
}

TEST_F(LinuxScreensTest, RingIs70PointsWideWithALineOf3) {
    m_stop->progress = 0.5;
    const auto panel = showStopScreen();
    const QImage picture = m_desktop.look();
    const int middle = drawnIn(picture, {97, 395, 5, 200}).center().y();
    const QRect ring = drawnIn(picture, {90, middle - 60, 100, 120});
    EXPECT_NEAR(ring.width(), 73, 1);
    EXPECT_NEAR(ring.height(), 73, 1);
    EXPECT_NEAR(ring.left(), 98.5, 1);
    const QRect line = drawnIn(picture, {160, middle, 40, 1});
    EXPECT_NEAR(line.left(), 168.5, 1);
    EXPECT_NEAR(line.width(), 3, 1);
}

TEST_F(LinuxScreensTest, RingGrowsWithTheProgress) {
    const auto panel = showStopScreen();
    for (unsigned done = 0; done <= 40; ++done) {
        m_stop->progress = done / 40.0;
        const std::string expected = std::string(done, '#') + std::string(40 - done, '.');
        EXPECT_TRUE(waitUntil([&] { return ringIn(m_desktop.look()) == expected; }))
            << ringIn(m_desktop.look()) << " at " << done;
    }
}

TEST_F(LinuxScreensTest, TextsAreInInterInTheirSizesAndWeights) {
    m_stop->progress = 1;
    const auto panel = showStopScreen();
    const QImage picture = m_desktop.look();
    const std::vector<QRect> texts = linesIn(picture, {90, 60, 1190, 335});
    ASSERT_EQ(texts.size(), 5U);
    expectLooksLike(picture, texts[0], plainly(":(", 120, QFont::Light, 1));
    expectLooksLike(picture, texts[1],
                    plainly("Your Mac ran into a problem that it couldn't handle, and now", 24,
                            QFont::Bold, 1));
    expectLooksLike(picture, texts[2], plainly("it needs to restart.", 24, QFont::Bold, 1));
    expectLooksLike(
        picture, texts[3],
        plainly("If you'd like to know more, you can search online later for this error:", 16,
                QFont::Normal, 0.8));
    expectLooksLike(picture, texts[4],
                    plainly("SYSTEM_THREAD_EXCEPTION_NOT_HANDLED", 16, QFont::Normal, 0.8));
    const std::vector<QRect> beside = linesIn(picture, {190, 395, 1090, 405});
    ASSERT_EQ(beside.size(), 2U);
    expectLooksLike(picture, beside[0], plainly("Complete: 100%", 14, QFont::Normal, 0.8, 202));
    expectLooksLike(picture, beside[1], plainly("0xC000021A", 14, QFont::Normal, 0.6, 202));
}

TEST_F(LinuxScreensTest, EveryStopCodeHasALineOfItsOwnOnASmallScreen) {
    const auto panel = m_screens.createPanel({.width = 800, .height = 600}, 128, 2, false);
    panel->setContentView(std::make_shared<BSODView>(m_stop));
    for (const char* name : {"SYSTEM_THREAD_EXCEPTION_NOT_HANDLED", "DRIVER_IRQL_NOT_LESS_OR_EQUAL",
                             "SYSTEM_SERVICE_EXCEPTION", "WINLOGON_FATAL_ERROR",
                             "PAGE_FAULT_IN_NONPAGED_AREA", "CRITICAL_PROCESS_DIED"}) {
        m_stop->errorMessage = name;
        panel->orderFrontRegardless();
        ASSERT_TRUE(comesToCover({0, 0, 800, 600}));
        waitFor(50ms);
        const QImage picture = m_desktop.look();
        // The face, two lines of the sentence, two of the hint, the ring.
        const std::vector<QRect> lines = linesIn(picture, {0, 0, 800, 600});
        ASSERT_EQ(lines.size(), 6U) << name;
        expectLooksLike(picture, lines[4], plainly(name, 16, QFont::Normal, 0.8));
        EXPECT_LE(drawnIn(picture, {0, 0, 800, 600}).right(), 700);
        panel->orderOut();
    }
}

TEST_F(LinuxScreensTest, TextsStartAtTheTopLeftInsideThePadding) {
    const auto panel = showStopScreen();
    const QImage picture = m_desktop.look();
    const QRect all = drawnIn(picture, TestDesktop::whole);
    EXPECT_GE(all.left(), 98);
    EXPECT_GE(all.top(), 80);
    EXPECT_LE(all.right(), 802);
    EXPECT_LT(all.bottom(), 560);
    const QRect face = drawnIn(picture, {100, 80, 300, 145});
    EXPECT_NEAR(face.left(), 108, 8);
    EXPECT_GT(face.height(), 90);
    const QRect sentence = drawnIn(picture, {100, 240, 1100, 80});
    EXPECT_NEAR(sentence.left(), 100, 2);
    EXPECT_GT(sentence.width(), 600);
}

TEST_F(LinuxScreensTest, ChangedScreenLooksLikeANewOne) {
    m_stop->progress = 0.999;
    auto panel = showStopScreen();
    m_stop->progress = 0.08;
    waitFor(50ms);
    const QImage changed = m_desktop.look();
    panel->orderOut();
    panel = showStopScreen();
    EXPECT_EQ(changed, m_desktop.look());
    m_stop->progress = 1.0;
    waitFor(50ms);
    EXPECT_NE(changed, m_desktop.look());
}

TEST_F(LinuxScreensTest, RingThatHasGrownLooksLikeOneThatIsDrawnAtOnce) {
    auto panel = showStopScreen();
    // The ticks of five seconds.
    for (int tick = 1; tick <= 300; ++tick) {
        m_stop->progress = tick / 300.0;
        if (tick % 50 != 0)
            continue;
        waitFor(50ms);
        const QImage grown = m_desktop.look();
        panel->orderOut();
        panel = showStopScreen();
        // Drawing in steps moves the ring's edge by up to a fifth of a pixel, which makes 49 of
        // 255; a gap or leftover pixels would make more.
        EXPECT_LE(mostDifferent(grown, m_desktop.look()), 64) << tick;
    }
}

TEST_F(LinuxScreensTest, UncoveredPartsAreDrawnAgain) {
    m_stop->progress = 0.5;
    const auto panel = showStopScreen();
    const QImage before = m_desktop.look();
    const xcb_window_t menu = m_desktop.openMenu({90, 70, 800, 500}, red);
    EXPECT_TRUE(waitUntil([&] { return m_desktop.look() == before; }));
    m_desktop.close(menu);
    waitFor(50ms);
    EXPECT_EQ(m_desktop.look(), before);
}

TEST_F(LinuxScreensTest, PointsFollowTheScaleFactor) {
    for (const double scale : {1.5, 2.0}) {
        ChildProcess program({"env", "QT_SCALE_FACTOR=" + std::to_string(scale),
                              QUORVANE_OVERLAY_PROBE, "stop", "0"});
        std::istringstream frame(program.line());
        std::string word;
        Rect rect;
        frame >> word >> rect.x >> rect.y >> rect.width >> rect.height;
        EXPECT_NEAR(rect.width, 1280 / scale, 0.01);
        EXPECT_NEAR(rect.height, 800 / scale, 0.01);
        EXPECT_TRUE(comesToShow({1279, 799}, blue));
        EXPECT_THAT(m_desktop.panels(), ElementsAre(TestDesktop::whole));
        EXPECT_THAT(program.line(), testing::StartsWith("up after"));
        waitFor(100ms);
        const QImage picture = m_desktop.look();
        const QRect all = drawnIn(picture, TestDesktop::whole);
        EXPECT_GE(all.left(), std::floor(98.5 * scale));
        EXPECT_LE(all.left(), 102 * scale);
        EXPECT_GE(all.top(), 80 * scale);
        // The face's mouth is as high as it is at scale 1, times the scale.
        const QRect mouth =
            drawnIn(picture, QRectF(140 * scale, 80 * scale, 60 * scale, 150 * scale).toRect());
        EXPECT_NEAR(mouth.height(), 110 * scale, 2 * scale);
    }
}

TEST_F(PlainServerTest, StopScreenIsShown) {
    m_stop->progress = 0.5;
    const auto panel = showStopScreen();
    EXPECT_THAT(m_desktop.panels(), ElementsAre(TestDesktop::whole));
    EXPECT_TRUE(waitUntil(
        [&] { return ringIn(m_desktop.look()) == std::string(20, '#') + std::string(20, '.'); }));
    const QImage picture = m_desktop.look();
    EXPECT_EQ(linesIn(picture, {90, 60, 1190, 335}).size(), 5U);
    EXPECT_TRUE(isNear(picture.pixel(1279, 799), blue));
    m_stop->progress = 0.75;
    EXPECT_TRUE(waitUntil(
        [&] { return ringIn(m_desktop.look()) == std::string(30, '#') + std::string(10, '.'); }));
}

} // namespace quorvane
