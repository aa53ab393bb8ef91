#include "platform/linux/overlays/X11OverlayWindow.h"

#include <unistd.h>
#include <xcb/shape.h>

#include <array>
#include <string_view>

#include "platform/linux/overlays/PaintedCanvas.h"

namespace quorvane {

namespace {

constexpr uint32_t buttonEvents = XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE;
// _NET_WM_BYPASS_COMPOSITOR: the compositor is to go on blending what is under this window.
constexpr uint32_t keepCompositing = 2;
// WM_HINTS: the flag of the input hint, and its value, no.
constexpr std::array<uint32_t, 9> neverTakesTheKeyboard{1, 0};

uint32_t pixelOf(const Color& color, int depth) {
    const QRgb pixel = qPremultiply(toolkitColor(color).rgba());
    return depth == 32 ? pixel : pixel & RGB_MASK;
}

} // namespace

X11OverlayWindow::X11OverlayWindow(X11Connection& connection, const Look& look)
    : m_connection(connection), m_depth(look.depth), m_window(xcb_generate_id(connection.get())),
      m_colormap(xcb_generate_id(connection.get())), m_context(xcb_generate_id(connection.get())) {
    create(look);
    describe();
    if (!look.takesClicks)
        letClicksThrough();
    xcb_map_window(m_connection.get(), m_window);
}

X11OverlayWindow::~X11OverlayWindow() {
    xcb_free_gc(m_connection.get(), m_context);
    xcb_destroy_window(m_connection.get(), m_window);
    xcb_free_colormap(m_connection.get(), m_colormap);
}

void X11OverlayWindow::create(const Look& look) {
    const xcb_visualid_t visual = m_connection.visual(m_depth);
    xcb_create_colormap(m_connection.get(), XCB_COLORMAP_ALLOC_NONE, m_colormap,
                        m_connection.root(), visual);
    xcb_create_window_value_list_t values{};
    values.background_pixel = pixelOf(look.background, m_depth);
    values.border_pixel = 0;
    values.override_redirect = 1;
    values.event_mask = buttonEvents | XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_VISIBILITY_CHANGE;
    // Clicks and drags must not reach the desktop.
    values.do_not_propogate_mask = buttonEvents | XCB_EVENT_MASK_POINTER_MOTION;
    values.colormap = m_colormap;
    values.cursor = look.cursor;
    xcb_create_window_aux(
        m_connection.get(), static_cast<uint8_t>(m_depth), m_window, m_connection.root(),
        static_cast<int16_t>(look.pixels.x()), static_cast<int16_t>(look.pixels.y()),
        static_cast<uint16_t>(look.pixels.width()), static_cast<uint16_t>(look.pixels.height()), 0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
        XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK |
            XCB_CW_DONT_PROPAGATE | XCB_CW_COLORMAP | XCB_CW_CURSOR,
        &values);
    xcb_create_gc(m_connection.get(), m_context, m_window, 0, nullptr);
}

void X11OverlayWindow::describe() const {
    const auto set = [this](xcb_atom_t property, xcb_atom_t type, uint8_t format, size_t count,
                            const void* data) {
        xcb_change_property(m_connection.get(), XCB_PROP_MODE_REPLACE, m_window, property, type,
                            format, static_cast<uint32_t>(count), data);
    };
    constexpr std::string_view windowClass{"quorvane\0quorvane\0", 18};
    set(XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8, windowClass.size(), windowClass.data());
    set(XCB_ATOM_WM_HINTS, XCB_ATOM_WM_HINTS, 32, neverTakesTheKeyboard.size(),
        neverTakesTheKeyboard.data());
    // Some Wayland compositors focus override-redirect windows too, except those of types that
    // never take the keyboard.
    const xcb_atom_t type = m_connection.atom("_NET_WM_WINDOW_TYPE_NOTIFICATION");
    set(m_connection.atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM, 32, 1, &type);
    if (m_depth == 32)
        set(m_connection.atom("_NET_WM_BYPASS_COMPOSITOR"), XCB_ATOM_CARDINAL, 32, 1,
            &keepCompositing);
}

void X11OverlayWindow::letClicksThrough() const {
    xcb_shape_rectangles(m_connection.get(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT,
                         XCB_CLIP_ORDERING_UNSORTED, m_window, 0, 0, 0, nullptr);
}

void X11OverlayWindow::raise() const {
    const uint32_t mode = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(m_connection.get(), m_window, XCB_CONFIG_WINDOW_STACK_MODE, &mode);
}

void X11OverlayWindow::placeBelow(xcb_window_t sibling) const {
    const std::array<uint32_t, 2> place{sibling, XCB_STACK_MODE_BELOW};
    xcb_configure_window(m_connection.get(), m_window,
                         XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE, place.data());
}

void X11OverlayWindow::show(const X11SharedImage& image, const QRect& part) const {
    image.put(m_window, m_context, static_cast<uint8_t>(m_depth), part);
}

} // namespace quorvane
