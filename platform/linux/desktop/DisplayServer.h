#pragma once

#include <memory>
#include <string>

struct xcb_connection_t;

namespace quorvane {

/// Chooses the display server for the toolkit, which must not have been started yet: X11 whenever
/// it answers, Wayland sessions included, because only there a window can stand above everything
/// else. A choice that the person made through the environment stands, unchecked.
class DisplayServer {
public:
    DisplayServer();

    /// What is wrong, for a person, if there is no display to be had; else empty.
    [[nodiscard]] const std::string& error() const { return m_error; }

    /// To be called once the toolkit is connected. Until then the connection that was tried stays
    /// open, because some X servers start anew when their last client leaves.
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
