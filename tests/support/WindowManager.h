#pragma once

#include <string>
#include <vector>

#include "base/NonCopyable.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/VirtualDisplay.h"

namespace quorvane {

/// A window manager (openbox) on a virtual display, which outlives it.
class WindowManager : NonCopyable {
public:
    /// Returns when it manages the display. Throws when it fails to. `options` are arguments of
    /// openbox.
    explicit WindowManager(VirtualDisplay& display, const std::vector<std::string>& options = {});

    /// Returns when it has mapped `window`.
    void waitForWindow(xcb_window_t window);
    /// Raises `window` and gives it the keyboard.
    void activate(xcb_window_t window);
    /// Returns when it has handled every event so far; `window` is one that it manages.
    void sync(xcb_window_t window);

private:
    [[nodiscard]] bool isReady() const;
    void wake();

    VirtualDisplay& m_display;
    xcb_connection_t* m_connection = m_display.connection();
    ChildProcess m_process;
    int m_titles = 0;
};

} // namespace quorvane
