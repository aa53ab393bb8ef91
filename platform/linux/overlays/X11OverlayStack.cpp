#include "platform/linux/overlays/X11OverlayStack.h"

#include <algorithm>
#include <utility>
#include <xcb/randr.h>
#include <xcb/xcb_cursor.h>
#include <xcb/xcb_renderutil.h>

#include "platform/linux/overlays/SessionLock.h"
#include "platform/linux/overlays/X11Monitors.h"
#include "platform/linux/overlays/X11Panel.h"

namespace quorvane {

namespace {

// Two programs that both want to be in front must not fight: the other may be a screen locker.
constexpr qint64 shortestRaiseInterval = 100; // Milliseconds.
constexpr int mostRaises = 2;

int firstScreensEvent(const X11Connection& connection) {
    const auto* extension = xcb_get_extension_data(connection.get(), &xcb_randr_id);
    return extension && extension->present ? extension->first_event : 0;
}

template <class Event>
const Event& as(const xcb_generic_event_t& event) {
    return reinterpret_cast<const Event&>(event);
}

} // namespace

X11OverlayStack::X11OverlayStack(std::unique_ptr<X11Connection> connection, const SessionLock& lock)
    : m_connection(std::move(connection)), m_lock(lock),
      m_screensEvent(firstScreensEvent(*m_connection)) {
    m_connection->setEventHandler([this](const xcb_generic_event_t& event) { handle(event); });
    m_raise.setSingleShot(true);
    QObject::connect(&m_raise, &QTimer::timeout, &m_raise, [this] {
        m_sinceRaise.start();
        ++m_raised;
        restack();
    });
    // One change of the monitors causes many events.
    m_follow.setSingleShot(true);
    QObject::connect(&m_follow, &QTimer::timeout, &m_follow, [this] { follow(); });
}

X11OverlayStack::~X11OverlayStack() {
    // Panels may outlive the stack, but their windows must not outlive the connection.
    for (const auto& panel : std::exchange(m_shown, {}))
        panel->orderOut();
    // RENDER's formats are cached by the connection's address, which the next one may have too.
    xcb_render_util_disconnect(m_connection->get());
}

xcb_cursor_t X11OverlayStack::arrow() {
    xcb_cursor_context_t* context = nullptr;
    if (m_arrow ||
        xcb_cursor_context_new(m_connection->get(),
                               const_cast<xcb_screen_t*>(&m_connection->screen()), &context) < 0)
        return m_arrow;
    m_arrow = xcb_cursor_load_cursor(context, "left_ptr");
    xcb_cursor_context_free(context);
    return m_arrow;
}

void X11OverlayStack::add(std::shared_ptr<X11Panel> panel) {
    if (m_shown.empty()) {
        m_stopSignals.emplace(m_connection->socket());
        watch(true);
    }
    m_raised = 0;
    std::erase(m_shown, panel);
    const auto place = std::find_if(m_shown.begin(), m_shown.end(), [&panel](const auto& other) {
        return other->level() <= panel->level();
    });
    m_shown.insert(place, std::move(panel));
    restack();
}

void X11OverlayStack::remove(const X11Panel& panel) {
    std::erase_if(m_shown, [&panel](const auto& shown) { return shown.get() == &panel; });
    if (m_shown.empty())
        watch(false);
    m_connection->settle();
    if (m_shown.empty())
        m_stopSignals.reset();
}

void X11OverlayStack::watch(bool desktop) {
    const uint32_t events = desktop ? XCB_EVENT_MASK_STRUCTURE_NOTIFY |
                                          XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY |
                                          XCB_EVENT_MASK_PROPERTY_CHANGE
                                    : 0;
    xcb_change_window_attributes(m_connection->get(), m_connection->root(), XCB_CW_EVENT_MASK,
                                 &events);
    if (m_screensEvent)
        xcb_randr_select_input(m_connection->get(), m_connection->root(),
                               desktop ? XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE |
                                             XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                                             XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE
                                       : 0);
}

void X11OverlayStack::restack() {
    xcb_window_t above = XCB_WINDOW_NONE;
    for (const auto& panel : m_shown) {
        const X11OverlayWindow* window = panel->window();
        if (!window)
            continue;
        if (above)
            window->placeBelow(above);
        else
            window->raise();
        above = window->id();
    }
    m_connection->settle();
}

bool X11OverlayStack::isLocked() const {
    return m_lock.isLocked() || m_screenSaver.isActive();
}

void X11OverlayStack::hideWhileLocked() {
    if (!isLocked())
        return;
    for (const auto& panel : m_shown)
        panel->removeWindow();
    m_connection->settle();
}

X11Panel* X11OverlayStack::find(xcb_window_t window) const {
    const auto panel =
        std::find_if(m_shown.begin(), m_shown.end(), [window](const auto& candidate) {
            return candidate->window() && candidate->window()->id() == window;
        });
    return panel == m_shown.end() ? nullptr : panel->get();
}

void X11OverlayStack::handle(const xcb_generic_event_t& event) {
    const int type = eventType(event);
    if (type == XCB_EXPOSE)
        handleExpose(as<xcb_expose_event_t>(event));
    else if (type == XCB_VISIBILITY_NOTIFY)
        handleVisibility(as<xcb_visibility_notify_event_t>(event));
    else if (type == XCB_MAP_NOTIFY)
        handleOther(as<xcb_map_notify_event_t>(event).event,
                    as<xcb_map_notify_event_t>(event).window);
    else if (type == XCB_CONFIGURE_NOTIFY)
        handleOther(as<xcb_configure_notify_event_t>(event).event,
                    as<xcb_configure_notify_event_t>(event).window);
    else if (m_screensEvent && (type == m_screensEvent + XCB_RANDR_SCREEN_CHANGE_NOTIFY ||
                                type == m_screensEvent + XCB_RANDR_NOTIFY))
        m_follow.start(0);
    else if (m_screenSaver.isChangedBy(event))
        hideWhileLocked();
}

void X11OverlayStack::handleExpose(const xcb_expose_event_t& event) const {
    if (X11Panel* panel = find(event.window))
        panel->expose({event.x, event.y, event.width, event.height});
}

void X11OverlayStack::handleVisibility(const xcb_visibility_notify_event_t& event) {
    // Panels behind the foremost may be covered by our own.
    if (event.state != XCB_VISIBILITY_UNOBSCURED && !m_shown.empty() &&
        find(event.window) == m_shown.front().get())
        raiseSoon();
}

void X11OverlayStack::handleOther(xcb_window_t reporter, xcb_window_t window) {
    if (reporter != m_connection->root())
        return;
    if (window == m_connection->root())
        m_follow.start(0);
    // Under a compositor no window counts as obscured, so the panels are raised whenever another
    // window is mapped or moved.
    else if (!find(window))
        raiseSoon();
}

void X11OverlayStack::raiseSoon() {
    if (m_raise.isActive() || m_raised == mostRaises)
        return;
    const qint64 since = m_sinceRaise.isValid() ? m_sinceRaise.elapsed() : shortestRaiseInterval;
    m_raise.start(static_cast<int>(std::max<qint64>(shortestRaiseInterval - since, 0)));
}

void X11OverlayStack::follow() {
    const std::vector<X11Monitor> monitors = x11Monitors(*m_connection);
    const auto main = x11MainMonitor(*m_connection);
    // A copy: a panel without a monitor removes itself.
    const auto panels = m_shown;
    for (const auto& panel : panels)
        panel->follow(monitors, main);
    restack();
}

} // namespace quorvane
