#include "tests/support/TestDesktop.h"

#include <xcb/xtest.h>

#include <array>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "platform/linux/common/X11Connection.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

/// As Xvfb has them in root windows of this depth.
QImage::Format formatOf(int depth) {
    return depth == 16   ? QImage::Format_RGB16
           : depth == 30 ? QImage::Format_RGB30
                         : QImage::Format_RGB32;
}

} // namespace

TestDesktop::TestDesktop(const std::vector<std::string>& serverOptions,
                         const std::vector<std::string>& managerOptions)
    : m_display("1280x800", serverOptions), m_windowManager(m_display, managerOptions) {
    QGuiApplication::setQuitOnLastWindowClosed(false);
}

std::unique_ptr<ChildProcess> TestDesktop::startCompositor() const {
    auto compositor = std::make_unique<ChildProcess>(std::vector<std::string>{
        "picom", "--config", "/dev/null", "--backend", "xrender", "--no-fading-openclose"});
    if (!waitUntil([this] { return m_display.hasOwner("_NET_WM_CM_S0"); }))
        throw std::runtime_error("picom does not start");
    return compositor;
}

/// The value of a pixel of this colour in the root window.
uint32_t TestDesktop::pixelOf(QRgb color) const {
    const xcb_colormap_t colors =
        xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->default_colormap;
    // 16 bits each.
    const auto channel = [](int value) { return static_cast<uint16_t>(value * 0x101); };
    const XcbReply<xcb_alloc_color_reply_t> reply{
        xcb_alloc_color_reply(m_connection,
                              xcb_alloc_color(m_connection, colors, channel(qRed(color)),
                                              channel(qGreen(color)), channel(qBlue(color))),
                              nullptr)};
    return reply ? reply->pixel : 0;
}

xcb_window_t TestDesktop::makeWindow(const QRect& place, QRgb color, bool overrideRedirect) {
    const xcb_window_t window = xcb_generate_id(m_connection);
    const std::array<uint32_t, 3> values{pixelOf(color), overrideRedirect ? 1U : 0U,
                                         XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_KEY_PRESS};
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, window, m_display.root(),
                      static_cast<int16_t>(place.x()), static_cast<int16_t>(place.y()),
                      static_cast<uint16_t>(place.width()), static_cast<uint16_t>(place.height()),
                      0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK,
                      values.data());
    return window;
}

xcb_window_t TestDesktop::openWindow(const QRect& place, QRgb color, bool fullScreen) {
    const xcb_window_t window = makeWindow(place, color, false);
    if (fullScreen) {
        const xcb_atom_t state = m_display.atom("_NET_WM_STATE_FULLSCREEN");
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window,
                            m_display.atom("_NET_WM_STATE"), XCB_ATOM_ATOM, 32, 1, &state);
    }
    // USPosition: otherwise the window manager chooses the place.
    const std::array<uint32_t, 18> placed{1};
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NORMAL_HINTS,
                        XCB_ATOM_WM_SIZE_HINTS, 32, placed.size(), placed.data());
    xcb_map_window(m_connection, window);
    m_windowManager.waitForWindow(window);
    activate(window);
    return window;
}

xcb_window_t TestDesktop::openMenu(const QRect& place, QRgb color) {
    const xcb_window_t window = makeWindow(place, color, true);
    xcb_map_window(m_connection, window);
    xcb_flush(m_connection);
    return window;
}

void TestDesktop::recolor(xcb_window_t window, QRgb color) {
    const uint32_t pixel = pixelOf(color);
    xcb_change_window_attributes(m_connection, window, XCB_CW_BACK_PIXEL, &pixel);
    xcb_clear_area(m_connection, 0, window, 0, 0, 0, 0);
    xcb_flush(m_connection);
}

void TestDesktop::raise(xcb_window_t window) {
    const uint32_t mode = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(m_connection, window, XCB_CONFIG_WINDOW_STACK_MODE, &mode);
    xcb_flush(m_connection);
}

void TestDesktop::close(xcb_window_t window) {
    if (window == m_activated)
        m_activated = XCB_WINDOW_NONE;
    xcb_destroy_window(m_connection, window);
    xcb_flush(m_connection);
}

void TestDesktop::activate(xcb_window_t window) {
    m_windowManager.activate(window);
    m_activated = window;
}

void TestDesktop::setScreenSaverStatus(const std::string& state) {
    const std::array<uint32_t, 3> status{state.empty() ? 0 : atom(state), 1, 1};
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_display.root(),
                        atom("_SCREENSAVER_STATUS"), XCB_ATOM_INTEGER, 32, status.size(),
                        status.data());
    m_display.sync();
}

void TestDesktop::movePointer(QPoint place) {
    m_display.sync();
    m_display.movePointer(static_cast<int16_t>(place.x()), static_cast<int16_t>(place.y()));
    waitFor(50ms);
}

void TestDesktop::click(QPoint place) {
    m_display.sync();
    m_display.click(static_cast<int16_t>(place.x()), static_cast<int16_t>(place.y()));
    // The window manager sees each click first and only then lets the window have it.
    if (m_activated != XCB_WINDOW_NONE)
        m_windowManager.sync(m_activated);
    waitFor(50ms);
}

void TestDesktop::pressKey() {
    constexpr uint8_t someLetter = 38;
    m_display.press(someLetter);
    m_display.release(someLetter);
    waitFor(50ms);
}

void TestDesktop::readEvents() {
    // Events that the server sent before its reply arrive before it.
    m_display.sync();
    while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(m_connection)}) {
        m_clicks += (event->response_type & 0x7F) == XCB_BUTTON_PRESS;
        m_keys += (event->response_type & 0x7F) == XCB_KEY_PRESS;
    }
}

int TestDesktop::takeClicks() {
    readEvents();
    return std::exchange(m_clicks, 0);
}

int TestDesktop::takeKeys() {
    readEvents();
    return std::exchange(m_keys, 0);
}

QImage TestDesktop::look() const {
    m_display.sync();
    const QSize size = rectOf(m_display.root()).size();
    const XcbReply<xcb_get_image_reply_t> reply{
        xcb_get_image_reply(m_connection,
                            xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_display.root(),
                                          0, 0, static_cast<uint16_t>(size.width()),
                                          static_cast<uint16_t>(size.height()), ~0U),
                            nullptr)};
    return QImage(xcb_get_image_data(reply.get()), size.width(), size.height(),
                  formatOf(reply->depth))
        .copy()
        .convertToFormat(QImage::Format_RGB32);
}

bool TestDesktop::isPanel(xcb_window_t window) const {
    const auto classCookie =
        xcb_get_property(m_connection, 0, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 0, 64);
    const auto attributesCookie = xcb_get_window_attributes(m_connection, window);
    const XcbReply<xcb_get_property_reply_t> name{
        xcb_get_property_reply(m_connection, classCookie, nullptr)};
    const XcbReply<xcb_get_window_attributes_reply_t> attributes{
        xcb_get_window_attributes_reply(m_connection, attributesCookie, nullptr)};
    return name && attributes && attributes->override_redirect &&
           attributes->map_state == XCB_MAP_STATE_VIEWABLE &&
           std::string_view(static_cast<const char*>(xcb_get_property_value(name.get())),
                            static_cast<size_t>(xcb_get_property_value_length(name.get())))
               .starts_with("quorvane");
}

QRect TestDesktop::rectOf(xcb_window_t window) const {
    const XcbReply<xcb_get_geometry_reply_t> reply{
        xcb_get_geometry_reply(m_connection, xcb_get_geometry(m_connection, window), nullptr)};
    return reply ? QRect(reply->x, reply->y, reply->width, reply->height) : QRect();
}

std::vector<xcb_window_t> TestDesktop::panelWindows() const {
    m_display.sync();
    const XcbReply<xcb_query_tree_reply_t> tree{xcb_query_tree_reply(
        m_connection, xcb_query_tree(m_connection, m_display.root()), nullptr)};
    std::vector<xcb_window_t> windows;
    for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
        const xcb_window_t window = xcb_query_tree_children(tree.get())[i];
        if (isPanel(window))
            windows.push_back(window);
    }
    return windows;
}

std::vector<QRect> TestDesktop::panels() const {
    std::vector<QRect> places;
    for (const xcb_window_t window : panelWindows())
        places.push_back(rectOf(window));
    return places;
}

std::vector<uint32_t> TestDesktop::panelProperty(const std::string& name) const {
    const XcbReply<xcb_get_property_reply_t> reply{
        xcb_get_property_reply(m_connection,
                               xcb_get_property(m_connection, 0, panelWindows().back(),
                                                m_display.atom(name), XCB_ATOM_ANY, 0, 64),
                               nullptr)};
    if (!reply || reply->format != 32)
        return {};
    const auto* numbers = static_cast<const uint32_t*>(xcb_get_property_value(reply.get()));
    return {numbers, numbers + reply->value_len};
}

bool TestDesktop::panelHasPointer() const {
    const XcbReply<xcb_test_compare_cursor_reply_t> reply{xcb_test_compare_cursor_reply(
        m_connection, xcb_test_compare_cursor(m_connection, panelWindows().back(), XCB_CURSOR_NONE),
        nullptr)};
    return reply && !reply->same;
}

} // namespace quorvane
