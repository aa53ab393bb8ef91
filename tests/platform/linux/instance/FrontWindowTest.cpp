#include "platform/linux/instance/FrontWindow.h"

#include <array>
#include <cstdlib>
#include <memory>
#include <vector>

#include <QGuiApplication>
#include <QWindow>

#include <gmock/gmock.h>

#include "platform/linux/common/X11Connection.h"
#include "tests/support/Environment.h"
#include "tests/support/QtApplication.h"
#include "tests/support/VirtualDisplay.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

/// What window managers and panels hear. Whether a window comes to the front is theirs to do.
class FrontWindowTest : public testing::Test {
protected:
    FrontWindowTest() {
        m_window.create();
        m_desktop->setEventHandler([this](const xcb_generic_event_t& event) { hear(event); });
        const std::array<std::uint32_t, 1> mask{XCB_EVENT_MASK_PROPERTY_CHANGE |
                                                XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY};
        xcb_change_window_attributes(m_desktop->get(), m_desktop->root(), XCB_CW_EVENT_MASK,
                                     mask.data());
        m_display.sync();
        m_desktop->settle();
    }

    void hear(const xcb_generic_event_t& event) {
        if (eventType(event) != XCB_CLIENT_MESSAGE)
            return;
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): as its type says.
        const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
        if (message.type == m_desktop->atom("_NET_ACTIVE_WINDOW"))
            m_activations.push_back(message);
        else if (message.type == m_desktop->atom("_NET_STARTUP_INFO_BEGIN") ||
                 message.type == m_desktop->atom("_NET_STARTUP_INFO"))
            m_startup.append(std::begin(message.data.data8), std::end(message.data.data8));
    }

    VirtualDisplay m_display;
    EnvironmentVariable m_platform{"QT_QPA_PLATFORM", "xcb"};
    ApplicationOf<QGuiApplication> m_application;
    std::unique_ptr<X11Connection> m_desktop = X11Connection::open();
    QWindow m_window;
    std::vector<xcb_client_message_event_t> m_activations;
    std::string m_startup;
};

TEST_F(FrontWindowTest, TheWindowManagerIsAskedAsForAPersonWhoActed) {
    bringToFront(m_window, {.id = "shell-1_TIME4000000000", .activation = {}});
    ASSERT_TRUE(waitUntil([this] { return !m_activations.empty(); }));
    EXPECT_EQ(m_activations[0].window, m_window.winId());
    EXPECT_EQ(m_activations[0].data.data32[0], 2U);
    EXPECT_EQ(m_activations[0].data.data32[1], 4000000000U);
}

TEST_F(FrontWindowTest, TheDesktopIsToldThatTheStartIsOver) {
    bringToFront(m_window, {.id = "a \"name\" with \\ in it_TIME12", .activation = {}});
    ASSERT_TRUE(waitUntil([this] { return m_startup.find('\0') != std::string::npos; }));
    EXPECT_STREQ(m_startup.c_str(), R"(remove: ID="a \"name\" with \\ in it_TIME12")");
}

TEST_F(FrontWindowTest, AStartInATerminalHasNoTimeAndNothingToEnd) {
    bringToFront(m_window, {});
    ASSERT_TRUE(waitUntil([this] { return !m_activations.empty(); }));
    EXPECT_EQ(m_activations[0].data.data32[1], 0U);
    waitFor(50ms);
    EXPECT_EQ(m_startup, "");
}

} // namespace

} // namespace quorvane
