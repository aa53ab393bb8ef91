#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <memory>
#include <optional>
#include <vector>

#include "base/NonCopyable.h"
#include "platform/linux/common/X11Connection.h"
#include "platform/linux/overlays/StopSignals.h"
#include "platform/linux/overlays/X11ScreenSaver.h"

namespace quorvane {

class SessionLock;
class X11Panel;

/// The visible panels, kept above all other windows and on the monitors that exist. Main thread
/// only.
class X11OverlayStack : NonCopyable {
public:
    /// `lock` must outlive the stack.
    X11OverlayStack(std::unique_ptr<X11Connection> connection, const SessionLock& lock);
    ~X11OverlayStack();

    [[nodiscard]] X11Connection& connection() { return *m_connection; }

    /// The arrow cursor of the desktop's theme.
    [[nodiscard]] xcb_cursor_t arrow();

    /// Shows the panel in front of those of its level, and keeps it alive.
    void add(std::shared_ptr<X11Panel> panel);
    void remove(const X11Panel& panel);
    /// Raises the windows above all others, in their order.
    void restack();
    /// Whether the session is locked, or a screen saver covers it: then no panel may be seen.
    [[nodiscard]] bool isLocked() const;
    /// Removes the windows of all panels if the session is locked. They do not come back.
    void hideWhileLocked();

private:
    void handle(const xcb_generic_event_t& event);
    void handleExpose(const xcb_expose_event_t& event) const;
    void handleVisibility(const xcb_visibility_notify_event_t& event);
    void handleOther(xcb_window_t reporter, xcb_window_t window);
    [[nodiscard]] X11Panel* find(xcb_window_t window) const;
    void raiseSoon();
    void follow();
    void watch(bool desktop);

    std::unique_ptr<X11Connection> m_connection;
    const SessionLock& m_lock;
    X11ScreenSaver m_screenSaver{*m_connection};
    xcb_cursor_t m_arrow = XCB_CURSOR_NONE;
    // RandR's first event; 0: the server has no RandR.
    int m_screensEvent;
    // While a panel is up.
    std::optional<StopSignals> m_stopSignals;
    // Front to back.
    std::vector<std::shared_ptr<X11Panel>> m_shown;
    QTimer m_raise;
    QElapsedTimer m_sinceRaise;
    // Since a panel was last ordered front.
    int m_raised = 0;
    QTimer m_follow;
};

} // namespace quorvane
