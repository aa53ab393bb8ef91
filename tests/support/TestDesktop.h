#pragma once

#include <QGuiApplication>
#include <QImage>
#include <memory>
#include <optional>
#include <string>
#include <vector>
#include <xcb/xcb.h>

#include "base/NonCopyable.h"
#include "tests/support/TestProgram.h"

namespace quorvane {

/// A virtual display of 1280 by 800 with a window manager, the toolkit's application on it, and a
/// person who looks, clicks and types.
class TestDesktop : NonCopyable {
public:
    static constexpr QRect whole{0, 0, 1280, 800};

    /// `serverOptions`: of the X server, such as an extension that it is to do without.
    explicit TestDesktop(const std::vector<std::string>& serverOptions = {});
    ~TestDesktop();

    /// Until this object, or what it gives, goes.
    [[nodiscard]] std::unique_ptr<TestProgram> startCompositor() const;

    /// Opens a window of one colour that the window manager has given the keyboard, and waits until
    /// it is all there. Its frame's place is up to the window manager, near `place`.
    xcb_window_t openWindow(const QRect& place, QRgb color, bool fullScreen = false);
    /// A window like those of menus, above everything that is there.
    xcb_window_t openMenu(const QRect& place, QRgb color);
    void recolor(xcb_window_t window, QRgb color);
    /// Puts a window above everything that is there.
    void raise(xcb_window_t window);
    void close(xcb_window_t window);
    /// Gives a window the keyboard, by way of the window manager.
    void activate(xcb_window_t window);

    void click(QPoint place);
    void pressKey();
    /// How many clicks and keys the windows of this object have got since the last time.
    [[nodiscard]] int takeClicks();
    [[nodiscard]] int takeKeys();

    /// All that the screen shows now.
    [[nodiscard]] QImage look() const;

    [[nodiscard]] QRgb look(QPoint place) const { return look().pixel(place); }

    [[nodiscard]] xcb_window_t focus() const;
    /// The places of the panels that are up, the foremost last.
    [[nodiscard]] std::vector<QRect> panels() const;
    /// The numbers that a property of the foremost panel holds, which has to be there.
    [[nodiscard]] std::vector<uint32_t> panelProperty(const std::string& name) const;
    /// Whether the foremost panel has a pointer of its own, in place of what is beneath it.
    [[nodiscard]] bool panelHasPointer() const;
    [[nodiscard]] xcb_atom_t atom(const std::string& name) const;

    /// Lets the program work until the condition holds, for some seconds at most; whether it held.
    template <typename Condition>
    static bool waitFor(const Condition& condition) {
        for (int step = 0; step < 500; ++step) {
            QCoreApplication::processEvents();
            if (condition())
                return true;
            pause();
        }
        return false;
    }

    static void work(int milliseconds);

private:
    static void pause();
    void startServer(const std::vector<std::string>& options);
    [[nodiscard]] bool hasOwner(const std::string& selection) const;
    [[nodiscard]] bool windowManagerIsThere() const;
    void wakeWindowManager();
    void awaitServer() const;
    void awaitWindowManager(xcb_window_t window);
    [[nodiscard]] bool isUp(xcb_window_t window) const;
    [[nodiscard]] bool isPanel(xcb_window_t window) const;
    [[nodiscard]] QRect rectOf(xcb_window_t window) const;
    // The foremost last.
    [[nodiscard]] std::vector<xcb_window_t> panelWindows() const;
    xcb_window_t makeWindow(const QRect& place, QRgb color, bool overrideRedirect);
    void fake(uint8_t type, uint8_t detail, QPoint place);
    void readEvents();

    std::unique_ptr<TestProgram> m_server;
    std::unique_ptr<TestProgram> m_windowManager;
    xcb_connection_t* m_connection = nullptr;
    const xcb_screen_t* m_screen = nullptr;
    // The window that was given the keyboard last, while it is there.
    xcb_window_t m_activated = XCB_WINDOW_NONE;
    int m_titles = 0;
    int m_clicks = 0;
    int m_keys = 0;
    int m_argumentCount = 3;
    std::vector<char*> m_arguments;
    std::optional<QGuiApplication> m_application;
};

} // namespace quorvane
