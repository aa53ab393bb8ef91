#include <array>
#include <cstdint>
#include <gmock/gmock.h>
#include <optional>
#include <vector>
#include <xcb/xcb.h>

#include "platform/linux/desktop/X11ObscuredWindowWatcher.h"
#include "tests/support/QtApplication.h"
#include "tests/support/VirtualDisplay.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Place {
    std::int16_t x;
    std::int16_t y;
    std::uint16_t width;
    std::uint16_t height;
};

class X11ObscuredWindowWatcherTest : public testing::Test {
protected:
    X11ObscuredWindowWatcherTest()
        : m_window(make({.x = 20, .y = 20, .width = 100, .height = 100})) {
        m_cover.emplace(m_window, [this](bool covered) { m_reports.push_back(covered); });
        m_display.sync();
        show(m_window);
        reports(1);
        m_reports.clear();
    }

    ~X11ObscuredWindowWatcherTest() override {
        m_cover.reset();
        xcb_disconnect(m_connection);
    }

    xcb_window_t make(const Place& place) {
        const xcb_window_t window = xcb_generate_id(m_connection);
        const auto* screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
        const std::array<std::uint32_t, 1> overrideRedirect{1};
        xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, window, screen->root, place.x,
                          place.y, place.width, place.height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT, overrideRedirect.data());
        xcb_flush(m_connection);
        return window;
    }

    void show(xcb_window_t window) {
        xcb_map_window(m_connection, window);
        xcb_flush(m_connection);
    }

    xcb_window_t open(const Place& place) {
        const xcb_window_t window = make(place);
        show(window);
        return window;
    }

    void close(xcb_window_t window) {
        xcb_destroy_window(m_connection, window);
        xcb_flush(m_connection);
    }

    /// Waits up to a second for `count` reports; returns all that came.
    const std::vector<bool>& reports(std::size_t count) {
        waitUntil([&] { return m_reports.size() >= count; }, 1s);
        return m_reports;
    }

    QtApplication m_application;
    VirtualDisplay m_display;
    xcb_connection_t* m_connection = xcb_connect(nullptr, nullptr);
    std::vector<bool> m_reports;
    xcb_window_t m_window;
    std::optional<X11ObscuredWindowWatcher> m_cover;
};

TEST_F(X11ObscuredWindowWatcherTest, AWindowIsCoveredOnceAllOfItIsHidden) {
    const auto part = open({.x = 0, .y = 0, .width = 100, .height = 320});
    EXPECT_THAT(reports(1), ElementsAre(false));
    const auto rest = open({.x = 100, .y = 0, .width = 100, .height = 320});
    EXPECT_THAT(reports(2), ElementsAre(false, true));
    close(part);
    EXPECT_THAT(reports(3), ElementsAre(false, true, false));
    close(rest);
    EXPECT_THAT(reports(4), ElementsAre(false, true, false, false));
}

TEST_F(X11ObscuredWindowWatcherTest, AWindowBesideItDoesNotCoverIt) {
    open({.x = 200, .y = 20, .width = 100, .height = 100});
    m_display.sync();
    waitFor(50ms);
    EXPECT_THAT(m_reports, IsEmpty());
}

} // namespace

} // namespace quorvane
