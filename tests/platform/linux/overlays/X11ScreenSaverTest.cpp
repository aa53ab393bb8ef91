#include "platform/linux/overlays/X11ScreenSaver.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/QtApplication.h"
#include "tests/support/VirtualDisplay.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

class X11ScreenSaverTest : public testing::Test {
protected:
    X11ScreenSaverTest() {
        m_connection->setEventHandler([this](const xcb_generic_event_t& event) {
            m_changes += m_saver.isChangedBy(event) ? 1 : 0;
        });
        const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_change_window_attributes(m_connection->get(), m_connection->root(), XCB_CW_EVENT_MASK,
                                     &events);
        m_connection->settle();
    }

    /// Sets the property as a screen saver does: the state, then the time and what it draws.
    void setState(xcb_atom_t state) { setProperty("_SCREENSAVER_STATUS", {state, 0, 0, 1}); }

    void setProperty(const std::string& name, const std::vector<std::uint32_t>& numbers) {
        xcb_change_property(m_display.connection(), XCB_PROP_MODE_REPLACE, m_display.root(),
                            m_display.atom(name), XCB_ATOM_INTEGER, 32,
                            static_cast<std::uint32_t>(numbers.size()), numbers.data());
        m_display.sync();
    }

    VirtualDisplay m_display;
    QtApplication m_application;
    std::unique_ptr<X11Connection> m_connection = X11Connection::open();
    X11ScreenSaver m_saver{*m_connection};
    int m_changes = 0;
};

TEST_F(X11ScreenSaverTest, IsNotActiveWhereThereIsNone) {
    EXPECT_FALSE(m_saver.isActive());
}

TEST_F(X11ScreenSaverTest, IsActiveWhileBlankOrLocked) {
    setState(m_display.atom("BLANK"));
    EXPECT_TRUE(m_saver.isActive());
    setState(m_display.atom("LOCK"));
    EXPECT_TRUE(m_saver.isActive());
    setState(0);
    EXPECT_FALSE(m_saver.isActive());
}

TEST_F(X11ScreenSaverTest, IsNotActiveWithAPropertyThatIsNoState) {
    setProperty("_SCREENSAVER_STATUS", {});
    EXPECT_FALSE(m_saver.isActive());
    xcb_change_property(m_display.connection(), XCB_PROP_MODE_REPLACE, m_display.root(),
                        m_display.atom("_SCREENSAVER_STATUS"), XCB_ATOM_STRING, 8, 4, "LOCK");
    m_display.sync();
    EXPECT_FALSE(m_saver.isActive());
}

TEST_F(X11ScreenSaverTest, IsNotActiveOnceTheServerIsGone) {
    setState(m_display.atom("LOCK"));
    m_display.end();
    EXPECT_FALSE(m_saver.isActive());
}

TEST_F(X11ScreenSaverTest, OnlyItsOwnPropertyIsAChange) {
    setProperty("_NET_ACTIVE_WINDOW", {1});
    setState(m_display.atom("LOCK"));
    EXPECT_TRUE(waitUntil([this] { return m_changes > 0; }));
    xcb_delete_property(m_display.connection(), m_display.root(),
                        m_display.atom("_SCREENSAVER_STATUS"));
    m_display.sync();
    EXPECT_TRUE(waitUntil([this] { return m_changes > 1; }));
    waitFor(50ms);
    EXPECT_EQ(m_changes, 2);
}

} // namespace

} // namespace quorvane
