#pragma once

#include <QGuiApplication>
#include <QImage>
#include <memory>
#include <string>
#include <vector>
#include <xcb/xcb.h>

#include "base/NonCopyable.h"
#include "tests/support/QtApplication.h"
#include "tests/support/VirtualDisplay.h"
#include "tests/support/WindowManager.h"

namespace quorvane {

/// A virtual display of 1280 by 800 with a window manager and a Qt application. Opens windows on
/// it, sends clicks and keys, and takes pictures.
class TestDesktop : NonCopyable {
public:
    static constexpr QRect whole{0, 0, 1280, 800};

    /// `serverOptions` are arguments of Xvfb, such as "-extension", "RANDR" to disable it,
    /// `managerOptions` those of openbox.
    explicit TestDesktop(const std::vector<std::string>& serverOptions = {},
                         const std::vector<std::string>& managerOptions = {});

    /// It runs as long as the returned object lives.
    [[nodiscard]] std::unique_ptr<ChildProcess> startCompositor() const;

    /// Opens a window of one colour and waits until it is up and has the keyboard. The window
    /// manager puts its frame at or near `place`.
    xcb_window_t openWindow(const QRect& place, QRgb color, bool fullScreen = false);
    /// A window like those of menus, above all others.
    xcb_window_t openMenu(const QRect& place, QRgb color);
    void recolor(xcb_window_t window, QRgb color);
    /// Puts a window above all others.
    void raise(xcb_window_t window);
    void close(xcb_window_t window);
    /// Has the window manager raise a window and give it the keyboard.
    void activate(xcb_window_t window);

    /// Sets the property by which a screen saver tells its state: "BLANK", "LOCK", or empty for
    /// none.
    void setScreenSaverStatus(const std::string& state);

    void movePointer(QPoint place);
    void click(QPoint place);
    void pressKey();
    /// How many clicks and keys the windows of this object have got since the last call.
    [[nodiscard]] int takeClicks();
    [[nodiscard]] int takeKeys();

    /// All that the screen shows now; its root window has 24, 16 or 30 bits for each pixel.
    [[nodiscard]] QImage look() const;

    [[nodiscard]] QRgb look(QPoint place) const { return look().pixel(place); }

    [[nodiscard]] xcb_window_t focus() const { return m_display.focus(); }

    /// The places of the panels that are up, the foremost last.
    [[nodiscard]] std::vector<QRect> panels() const;
    /// The numbers that a property of the foremost panel holds, which has to be there.
    [[nodiscard]] std::vector<uint32_t> panelProperty(const std::string& name) const;
    /// Whether the foremost panel has a pointer of its own, in place of what is beneath it.
    [[nodiscard]] bool panelHasPointer() const;

    [[nodiscard]] xcb_atom_t atom(const std::string& name) const { return m_display.atom(name); }

private:
    [[nodiscard]] bool isPanel(xcb_window_t window) const;
    [[nodiscard]] QRect rectOf(xcb_window_t window) const;
    // The foremost last.
    [[nodiscard]] std::vector<xcb_window_t> panelWindows() const;
    [[nodiscard]] uint32_t pixelOf(QRgb color) const;
    xcb_window_t makeWindow(const QRect& place, QRgb color, bool overrideRedirect);
    void readEvents();

    VirtualDisplay m_display;
    WindowManager m_windowManager;
    xcb_connection_t* m_connection = m_display.connection();
    // The window that was activated last, while it exists.
    xcb_window_t m_activated = XCB_WINDOW_NONE;
    int m_clicks = 0;
    int m_keys = 0;
    EnvironmentVariable m_platform{"QT_QPA_PLATFORM", "xcb"};
    ApplicationOf<QGuiApplication> m_application;
};

} // namespace quorvane
