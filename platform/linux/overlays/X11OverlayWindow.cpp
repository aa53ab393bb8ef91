#include "platform/linux/overlays/X11OverlayWindow.h"

#include <xcb/shape.h>
#include <xcb/xcb_renderutil.h>

#include <array>
#include <string_view>

namespace quorvane {

namespace {

constexpr uint8_t blendedDepth = 32;
constexpr uint32_t buttonEvents = XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE;
// _NET_WM_BYPASS_COMPOSITOR: the compositor is to go on blending what is under this window.
constexpr uint32_t keepCompositing = 2;
// _KDE_NET_WM_SKIP_CLOSE_ANIMATION: the window is to disappear at once.
constexpr uint32_t skipAnimation = 1;
// WM_HINTS: the flag of the input hint, and its value, no.
constexpr std::array<uint32_t, 9> neverTakesTheKeyboard{1, 0};

/// 0 if RENDER has none for this visual.
xcb_render_pictformat_t formatOf(const X11Connection& connection, xcb_visualid_t visual) {
    const auto* formats = xcb_render_util_query_formats(connection.get());
    const auto* format = formats ? xcb_render_util_find_visual_format(formats, visual) : nullptr;
    return format ? format->format : 0;
}

/// Whether the root window's pixels are colours, and not places in a colour map.
bool hasTrueColors(const xcb_screen_t& screen) {
    for (auto depths = xcb_screen_allowed_depths_iterator(&screen); depths.rem > 0;
         xcb_depth_next(&depths))
        for (auto visuals = xcb_depth_visuals_iterator(depths.data); visuals.rem > 0;
             xcb_visualtype_next(&visuals))
            if (visuals.data->visual_id == screen.root_visual)
                return visuals.data->_class == XCB_VISUAL_CLASS_TRUE_COLOR;
    return false;
}

/// The format of a QImage's 32-bit pixels, with or without alpha.
xcb_render_pictformat_t imageFormat(const X11Connection& connection, xcb_pict_standard_t standard) {
    return xcb_render_util_find_standard_format(xcb_render_util_query_formats(connection.get()),
                                                standard)
        ->id;
}

/// A pixmap in the X server, for RENDER to draw on.
class Pixmap : NonCopyable {
public:
    Pixmap(const X11Connection& connection, QSize size, uint8_t depth,
           xcb_render_pictformat_t format)
        : m_connection(connection.get()), m_pixmap(xcb_generate_id(m_connection)),
          m_picture(xcb_generate_id(m_connection)) {
        xcb_create_pixmap(m_connection, depth, m_pixmap, connection.root(),
                          static_cast<uint16_t>(size.width()),
                          static_cast<uint16_t>(size.height()));
        xcb_render_create_picture(m_connection, m_picture, m_pixmap, format, 0, nullptr);
    }

    ~Pixmap() {
        xcb_render_free_picture(m_connection, m_picture);
        xcb_free_pixmap(m_connection, m_pixmap);
    }

    [[nodiscard]] xcb_pixmap_t id() const { return m_pixmap; }

    [[nodiscard]] xcb_render_picture_t picture() const { return m_picture; }

private:
    xcb_connection_t* m_connection;
    xcb_pixmap_t m_pixmap;
    xcb_render_picture_t m_picture;
};

xcb_rectangle_t rectangleOf(QSize size) {
    return {.x = 0,
            .y = 0,
            .width = static_cast<uint16_t>(size.width()),
            .height = static_cast<uint16_t>(size.height())};
}

void copyDesktop(const X11Connection& connection, const QRect& pixels, const Pixmap& target) {
    const xcb_render_picture_t desktop = xcb_generate_id(connection.get());
    const uint32_t withWindows = XCB_SUBWINDOW_MODE_INCLUDE_INFERIORS;
    xcb_render_create_picture(connection.get(), desktop, connection.root(),
                              formatOf(connection, connection.screen().root_visual),
                              XCB_RENDER_CP_SUBWINDOW_MODE, &withWindows);
    xcb_render_composite(
        connection.get(), XCB_RENDER_PICT_OP_SRC, desktop, XCB_NONE, target.picture(),
        static_cast<int16_t>(pixels.x()), static_cast<int16_t>(pixels.y()), 0, 0, 0, 0,
        static_cast<uint16_t>(pixels.width()), static_cast<uint16_t>(pixels.height()));
    xcb_render_free_picture(connection.get(), desktop);
}

void fill(const X11Connection& connection, const Pixmap& target, QSize size, uint8_t operation,
          const Color& color) {
    const auto channel = [&color](double value) {
        return static_cast<uint16_t>(qRound(value * color.alpha * UINT16_MAX));
    };
    const xcb_rectangle_t everything = rectangleOf(size);
    xcb_render_fill_rectangles(
        connection.get(), operation, target.picture(),
        {channel(color.red), channel(color.green), channel(color.blue), channel(1)}, 1,
        &everything);
}

} // namespace

bool X11OverlayWindow::isSupported(const X11Connection& connection) {
    return hasTrueColors(connection.screen()) &&
           formatOf(connection, connection.screen().root_visual) != 0;
}

X11OverlayWindow::X11OverlayWindow(X11Connection& connection, const Look& look)
    : m_connection(connection),
      m_blended(!look.opaque && connection.visual(blendedDepth) != 0 && connection.composites()),
      m_depth(m_blended ? blendedDepth : connection.screen().root_depth),
      m_visual(m_blended ? connection.visual(blendedDepth) : connection.screen().root_visual),
      m_window(xcb_generate_id(connection.get())), m_colormap(xcb_generate_id(connection.get())),
      m_context(xcb_generate_id(connection.get())),
      m_takesImages(formatOf(connection, m_visual) ==
                    imageFormat(connection, XCB_PICT_STANDARD_RGB_24)) {
    create(look);
    describe();
    if (!look.takesClicks)
        letClicksThrough();
    xcb_map_window(m_connection.get(), m_window);
    // From now on: what is shown right after this needs no exposure.
    const uint32_t events =
        buttonEvents | XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_VISIBILITY_CHANGE;
    xcb_change_window_attributes(m_connection.get(), m_window, XCB_CW_EVENT_MASK, &events);
}

X11OverlayWindow::~X11OverlayWindow() {
    xcb_free_gc(m_connection.get(), m_context);
    xcb_destroy_window(m_connection.get(), m_window);
    xcb_free_colormap(m_connection.get(), m_colormap);
}

void X11OverlayWindow::create(const Look& look) {
    // One pixel is enough for colours alone: the server repeats a background.
    const bool showsDesktop = !look.opaque && !m_blended;
    const QSize size = showsDesktop ? look.pixels.size() : QSize(1, 1);
    const Pixmap background(m_connection, size, m_depth, formatOf(m_connection, m_visual));
    if (showsDesktop)
        copyDesktop(m_connection, look.pixels, background);
    else
        fill(m_connection, background, size, XCB_RENDER_PICT_OP_CLEAR, {});
    for (const Color& layer : look.layers)
        fill(m_connection, background, size, XCB_RENDER_PICT_OP_OVER, layer);

    xcb_create_colormap(m_connection.get(), XCB_COLORMAP_ALLOC_NONE, m_colormap,
                        m_connection.root(), m_visual);
    xcb_create_window_value_list_t values{};
    values.background_pixmap = background.id();
    values.border_pixel = 0;
    values.override_redirect = 1;
    // Clicks and drags must not reach the desktop.
    values.event_mask = buttonEvents;
    values.do_not_propogate_mask = buttonEvents | XCB_EVENT_MASK_POINTER_MOTION;
    values.colormap = m_colormap;
    values.cursor = look.cursor;
    xcb_create_window_aux(
        m_connection.get(), m_depth, m_window, m_connection.root(),
        static_cast<int16_t>(look.pixels.x()), static_cast<int16_t>(look.pixels.y()),
        static_cast<uint16_t>(look.pixels.width()), static_cast<uint16_t>(look.pixels.height()), 0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT, m_visual,
        XCB_CW_BACK_PIXMAP | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK |
            XCB_CW_DONT_PROPAGATE | XCB_CW_COLORMAP | XCB_CW_CURSOR,
        &values);

    xcb_create_gc_value_list_t drawing{};
    drawing.fill_style = XCB_FILL_STYLE_TILED;
    drawing.tile = background.id();
    drawing.graphics_exposures = 0;
    xcb_create_gc_aux(m_connection.get(), m_context, m_window,
                      XCB_GC_FILL_STYLE | XCB_GC_TILE | XCB_GC_GRAPHICS_EXPOSURES, &drawing);
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
    set(m_connection.atom("_KDE_NET_WM_SKIP_CLOSE_ANIMATION"), XCB_ATOM_CARDINAL, 32, 1,
        &skipAnimation);
    if (m_blended)
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

void X11OverlayWindow::moveTo(const QRect& pixels) const {
    const std::array<int32_t, 4> place{pixels.x(), pixels.y(), pixels.width(), pixels.height()};
    xcb_configure_window(m_connection.get(), m_window,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT,
                         place.data());
    // Exposes everything, whatever the server still has.
    xcb_clear_area(m_connection.get(), 1, m_window, 0, 0, 0, 0);
}

void X11OverlayWindow::put(const QImage& picture, xcb_drawable_t target, uint8_t depth,
                           xcb_gcontext_t context, QPoint corner) const {
    xcb_put_image(m_connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, target, context,
                  static_cast<uint16_t>(picture.width()), static_cast<uint16_t>(picture.height()),
                  static_cast<int16_t>(corner.x()), static_cast<int16_t>(corner.y()), 0, depth,
                  static_cast<uint32_t>(picture.sizeInBytes()), picture.constBits());
}

void X11OverlayWindow::show(const QImage& picture, QPoint corner) const {
    if (m_takesImages && !picture.hasAlphaChannel()) {
        put(picture, m_window, m_depth, m_context, corner);
        return;
    }
    const xcb_rectangle_t part = rectangleOf(picture.size());
    const Pixmap source(m_connection, picture.size(), blendedDepth,
                        imageFormat(m_connection, XCB_PICT_STANDARD_ARGB_32));
    const xcb_gcontext_t context = xcb_generate_id(m_connection.get());
    xcb_create_gc(m_connection.get(), context, source.id(), 0, nullptr);
    put(picture, source.id(), blendedDepth, context, {});
    xcb_free_gc(m_connection.get(), context);

    // Put together out of sight, so that no half of it is ever seen.
    const Pixmap whole(m_connection, picture.size(), m_depth, formatOf(m_connection, m_visual));
    const std::array<int32_t, 2> origin{-corner.x(), -corner.y()};
    xcb_change_gc(m_connection.get(), m_context,
                  XCB_GC_TILE_STIPPLE_ORIGIN_X | XCB_GC_TILE_STIPPLE_ORIGIN_Y, origin.data());
    xcb_poly_fill_rectangle(m_connection.get(), whole.id(), m_context, 1, &part);
    xcb_render_composite(m_connection.get(), XCB_RENDER_PICT_OP_OVER, source.picture(), XCB_NONE,
                         whole.picture(), 0, 0, 0, 0, 0, 0, part.width, part.height);
    xcb_copy_area(m_connection.get(), whole.id(), m_window, m_context, 0, 0,
                  static_cast<int16_t>(corner.x()), static_cast<int16_t>(corner.y()), part.width,
                  part.height);
}

} // namespace quorvane
