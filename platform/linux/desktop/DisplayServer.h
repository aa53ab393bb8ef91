#pragma once

#include <memory>
#include <string>

struct xcb_connection_t;

namespace quorvane {

/// Chooses Qt's platform, before there is a QGuiApplication: X11 whenever a server answers, in
/// Wayland sessions too, because only X11 lets a window stay above all others. Where the user has
/// set QT_QPA_PLATFORM, that is kept, unchecked. Waits for an X server that hangs, as Qt would: no
/// effect can be seen or heard yet.
class DisplayServer {
public:
    DisplayServer();

    /// The message for the user if there is no display; else empty.
    [[nodiscard]] const std::string& error() const { return m_error; }

    /// Closes the connection that was tried. To be called once Qt is connected: some X servers
    /// reset when their last client disconnects.
    void release() { m_connection.reset(); }

private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const;
    };

    bool tryX11();

    std::unique_ptr<xcb_connection_t, Disconnect> m_connection;
    std::string m_error;
};

} // namespace quorvane
