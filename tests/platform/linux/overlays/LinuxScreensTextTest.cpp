// Stop screens whose texts change.

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

} // namespace quorvane
