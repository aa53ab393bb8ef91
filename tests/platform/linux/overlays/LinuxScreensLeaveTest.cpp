// How a panel is removed when the main thread cannot do it.

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <thread>

#include <gmock/gmock.h>
#include <xcb/xcb.h>

#include "tests/platform/linux/overlays/LinuxScreensFixture.h"
#include "tests/support/NoThreads.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

using testing::ElementsAre;
using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;
using Clock = std::chrono::steady_clock;

constexpr double timeLimit = 0.4;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/// Waits without running the event loop, as a main thread that hangs.
template <class Condition>
bool hangUntil(const Condition& condition, double seconds) {
    const auto start = Clock::now();
    while (secondsSince(start) < seconds) {
        if (condition())
            return true;
        std::this_thread::sleep_for(10ms);
    }
    return false;
}

} // namespace

class LinuxScreensLeaveTest : public LinuxScreensTest {
protected:
    LinuxScreensLeaveTest() { std::signal(SIGPIPE, SIG_IGN); }

    std::shared_ptr<OverlayPanel> showWithTimeLimit() {
        return show({.opaque = true,
                     .background = BSODView::background,
                     .ignoresMouseEvents = {},
                     .timeLimit = timeLimit},
                    std::make_shared<BSODView>(m_stop));
    }

    [[nodiscard]] bool isClear() const { return m_desktop.panels().empty(); }

    /// Kills the panel's X client, as xkill does.
    void endClientOfPanel() {
        xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
        const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
        auto* tree = xcb_query_tree_reply(connection, xcb_query_tree(connection, root), nullptr);
        // The panel is the foremost window.
        const int last = xcb_query_tree_children_length(tree) - 1;
        xcb_kill_client(connection, xcb_query_tree_children(tree)[last]);
        std::free(tree); // NOLINT: the library's allocation.
        xcb_flush(connection);
        ASSERT_TRUE(hangUntil([this] { return isClear(); }, 5));
        xcb_disconnect(connection);
    }
};

TEST_F(LinuxScreensLeaveTest, HungMainThreadLosesItsPanelAndCanShowAnother) {
    CaptureStderr();
    const auto asked = Clock::now();
    const auto panel = showWithTimeLimit();
    const auto shown = Clock::now();
    ASSERT_THAT(m_desktop.panels(), ElementsAre(TestDesktop::whole));
    EXPECT_TRUE(hangUntil([this] { return isClear(); }, 10));
    EXPECT_GT(secondsSince(asked), 2.35);
    EXPECT_LT(secondsSince(shown), 3.0);
    std::this_thread::sleep_for(100ms);
    EXPECT_EQ(GetCapturedStderr(),
              "quorvane: the main thread hangs: removed a panel that was overdue\n");

    // The main thread runs again; its panel object does not know that the window is gone.
    m_stop->progress = 0.5;
    panel->orderOut();
    const auto next = showStopScreen();
    EXPECT_TRUE(comesToCover(TestDesktop::whole));
    EXPECT_TRUE(comesToShow(farFromText, blue));
    next->orderOut();
    EXPECT_TRUE(waitUntil([this] { return isClear(); }));
}

TEST_F(LinuxScreensLeaveTest, PanelThatGoesInTimeIsNotReported) {
    CaptureStderr();
    const auto other = showStopScreen();
    const auto panel = showWithTimeLimit();
    waitFor(300ms);
    panel->orderOut();
    EXPECT_FALSE(hangUntil([this] { return isClear(); }, 3)) << "the other one is still up";
    EXPECT_EQ(GetCapturedStderr(), "");
}

TEST_F(LinuxScreensLeaveTest, TimeLimitRunsFromTheFirstShowing) {
    CaptureStderr();
    const auto panel = showWithTimeLimit();
    const auto shown = Clock::now();
    waitFor(1500ms);
    panel->setBackgroundColor({.red = 1, .green = 0, .blue = 0, .alpha = 1});
    panel->orderFrontRegardless();
    EXPECT_TRUE(hangUntil([this] { return isClear(); }, 10));
    EXPECT_LT(secondsSince(shown), 3.0);
    GetCapturedStderr();
}

TEST_F(LinuxScreensLeaveTest, PanelWithoutATimeLimitStaysUp) {
    const auto panel = showStopScreen();
    EXPECT_FALSE(hangUntil([this] { return isClear(); }, 3));
}

TEST_F(LinuxScreensLeaveTest, StopFromTheTerminalRemovesThePanelThatIsStillUp) {
    const auto panel = showStopScreen();
    showFreeze()->orderOut();
    ASSERT_TRUE(comesToCover(TestDesktop::whole));
    // Stops a fork of this process, which shares the connection.
    ChildProcess copy([] { return std::raise(SIGTSTP); });
    EXPECT_EQ(copy.waitForStop(), SIGTSTP);
    EXPECT_TRUE(hangUntil([this] { return isClear(); }, 2));
    copy.end();
    showStopScreen();
    EXPECT_THAT(m_desktop.panels(), ElementsAre(TestDesktop::whole));
}

TEST_F(LinuxScreensLeaveTest, PanelsThatLostTheirConnectionAreHarmlessWhenAnotherIsShown) {
    const auto lost = showStopScreen();
    const auto freeze = showFreeze();
    endClientOfPanel();
    const auto next = showStopScreen();
    EXPECT_THAT(m_desktop.panels(), ElementsAre(TestDesktop::whole));
    m_stop->progress = 0.7;
    lost->orderFrontRegardless();
    lost->orderOut();
    freeze->orderOut();
    EXPECT_THAT(m_desktop.panels(), ElementsAre(TestDesktop::whole));
    EXPECT_TRUE(comesToShow(farFromText, blue));
}

TEST_F(PlainServerTest, ChangesAfterTheConnectionHasEndedAreHarmless) {
    std::signal(SIGPIPE, SIG_IGN);
    const auto panel = show({.opaque = true,
                             .background = BSODView::background,
                             .ignoresMouseEvents = {},
                             .timeLimit = timeLimit},
                            std::make_shared<BSODView>(m_stop));
    CaptureStderr();
    EXPECT_TRUE(hangUntil([this] { return m_desktop.panels().empty(); }, 10));
    GetCapturedStderr();
    for (int step = 1; step <= 100; ++step) {
        m_stop->progress = step / 100.0;
        waitFor(5ms);
    }
    panel->orderOut();
    const auto next = showStopScreen();
    EXPECT_THAT(m_desktop.panels(), ElementsAre(TestDesktop::whole));
}

TEST_F(LinuxScreensLeaveTest, PanelThatCannotBeWatchedIsNotShown) {
    const auto shown = showWithTimeLimit();
    shown->orderOut();
    CaptureStderr();
    {
        const NoThreads noThreads;
        shown->orderFrontRegardless();
        EXPECT_TRUE(isClear());
    }
    EXPECT_EQ(GetCapturedStderr(), "quorvane: the thread \"panel watchdog\" cannot be started: "
                                   "Resource temporarily unavailable\n");
    shown->orderFrontRegardless();
    EXPECT_THAT(m_desktop.panels(), ElementsAre(TestDesktop::whole)) << "as usual from then on";
}

} // namespace quorvane
