// Stop screens whose texts change, and on narrow screens.

#include "tests/platform/linux/overlays/LinuxScreensFixture.h"
#include "tests/support/Waiting.h"

namespace quorvane {

class LinuxScreensTextTest : public LinuxScreensTest {
protected:
    QImage newStopScreen() {
        const auto panel = showStopScreen();
        const QImage picture = m_desktop.look();
        panel->orderOut();
        return picture;
    }

    /// A stop screen over the left part of the desktop.
    QImage narrowStopScreen(int width) {
        const auto panel = m_screens.createPanel(
            {.width = static_cast<double>(width), .height = 800}, 128, 2, false);
        panel->setContentView(std::make_shared<BSODView>(m_stop));
        panel->orderFrontRegardless();
        EXPECT_TRUE(comesToCover({0, 0, width, 800}));
        waitFor(50ms);
        const QImage picture = m_desktop.look().copy(0, 0, width, 800);
        panel->orderOut();
        return picture;
    }
};

TEST_F(LinuxScreensTextTest, NewNameAndNewCodeReachTheScreen) {
    m_stop->progress = 0.5;
    const QImage first = newStopScreen();
    m_stop->errorMessage = "CRITICAL_PROCESS_DIED";
    const QImage otherName = newStopScreen();
    m_stop->errorCode = "0x000000EF";
    const QImage otherNameAndCode = newStopScreen();
    ASSERT_NE(first, otherName);
    ASSERT_NE(otherName, otherNameAndCode);

    m_stop->errorMessage = "SYSTEM_THREAD_EXCEPTION_NOT_HANDLED";
    m_stop->errorCode = "0xC000021A";
    const auto panel = showStopScreen();
    ASSERT_EQ(m_desktop.look(), first);
    m_stop->errorMessage = "CRITICAL_PROCESS_DIED";
    EXPECT_TRUE(waitUntil([&] { return m_desktop.look() == otherName; }, 2s));
    m_stop->errorCode = "0x000000EF";
    EXPECT_TRUE(waitUntil([&] { return m_desktop.look() == otherNameAndCode; }, 2s));
}

TEST_F(LinuxScreensTextTest, NarrowScreenWrapsTheSentenceAndClipsNothing) {
    const QImage wide = narrowStopScreen(1280);
    const std::vector<QRect> wideLines = linesIn(wide, {90, 60, 1190, 335});
    ASSERT_EQ(wideLines.size(), 5U) << "the face, two lines of the sentence, two of the hint";
    const auto ink = [](const QImage& picture, const QRect& part) {
        double sum = 0;
        for (int y = part.top(); y <= part.bottom(); ++y)
            for (int x = part.left(); x <= part.right(); ++x)
                sum += qRed(picture.pixel(x, y));
        return sum;
    };
    for (const auto& [width, sentenceLines] :
         {std::pair(800, 2U), std::pair(640, 3U), std::pair(600, 3U)}) {
        const QImage picture = narrowStopScreen(width);
        const QRect drawn = drawnIn(picture, picture.rect());
        EXPECT_GE(drawn.left(), 98) << width;
        EXPECT_LE(drawn.right(), width - 100) << width;
        // The lines of the sentence are 29 pixels apart and start at 80 + 145 + 24.
        const QRect sentence(0, 249, width, static_cast<int>(sentenceLines) * 29);
        EXPECT_EQ(linesIn(picture, sentence).size(), sentenceLines) << width;
        EXPECT_NEAR(ink(picture, sentence) / ink(wide, {0, 249, 1280, 58}), 1, 0.02) << width;
    }
}

TEST_F(LinuxScreensTextTest, EveryNameIsAWholeLineOnANarrowScreen) {
    for (const char* name : {"SYSTEM_THREAD_EXCEPTION_NOT_HANDLED", "DRIVER_IRQL_NOT_LESS_OR_EQUAL",
                             "SYSTEM_SERVICE_EXCEPTION", "WINLOGON_FATAL_ERROR",
                             "PAGE_FAULT_IN_NONPAGED_AREA", "CRITICAL_PROCESS_DIED"}) {
        m_stop->errorMessage = name;
        const QImage wide = narrowStopScreen(1280);
        const QRect expected = linesIn(wide, {90, 60, 1190, 335}).back();
        const QImage narrow = narrowStopScreen(600);
        // The last line above the ring.
        const std::vector<QRect> lines = linesIn(narrow, {90, 60, 510, 400});
        ASSERT_FALSE(lines.empty());
        EXPECT_EQ(narrow.copy(lines.back()), wide.copy(expected)) << name;
    }
}

TEST_F(LinuxScreensTextTest, NameThatWrapsMovesTheRingDown) {
    const auto panel = m_screens.createPanel({.width = 480, .height = 800}, 128, 2, false);
    panel->setContentView(std::make_shared<BSODView>(m_stop));
    panel->orderFrontRegardless();
    ASSERT_TRUE(comesToCover({0, 0, 480, 800}));
    waitFor(50ms);
    const QImage wrapped = m_desktop.look();
    m_stop->errorMessage = "CRITICAL_PROCESS_DIED";
    waitFor(50ms);
    const QImage oneLine = m_desktop.look();
    EXPECT_LT(drawnIn(oneLine, {0, 0, 480, 800}).bottom(),
              drawnIn(wrapped, {0, 0, 480, 800}).bottom() - 10);
    m_stop->errorMessage = "SYSTEM_THREAD_EXCEPTION_NOT_HANDLED";
    EXPECT_TRUE(waitUntil([&] { return m_desktop.look() == wrapped; }, 2s));
}

} // namespace quorvane
