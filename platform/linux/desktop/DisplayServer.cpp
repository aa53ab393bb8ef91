#include "platform/linux/desktop/DisplayServer.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <xcb/xcb.h>

#include <QByteArray>
#include <algorithm>
#include <filesystem>

#include "platform/linux/common/FileDescriptor.h"

namespace quorvane {

namespace {

constexpr auto qtPlatform = "QT_QPA_PLATFORM";

std::string environment(const char* name) {
    return qgetenv(name).toStdString();
}

bool waylandAnswers(const std::string& display) {
    const std::string path =
        (std::filesystem::path(environment("XDG_RUNTIME_DIR")) / display).string();
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path)
        return false;
    std::copy(path.begin(), path.end(), std::begin(address.sun_path));
    // A compositor that hangs may have a full queue: Qt is not to wait for it either.
    const FileDescriptor descriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    // The sockets API takes the addresses of all families as this type.
    const auto* generic = reinterpret_cast<const sockaddr*>(&address);
    return connect(descriptor.get(), generic, sizeof address) == 0;
}

} // namespace

void DisplayServer::Disconnect::operator()(xcb_connection_t* connection) const {
    xcb_disconnect(connection);
}

bool DisplayServer::tryX11() {
    m_connection.reset(xcb_connect(nullptr, nullptr));
    return xcb_connection_has_error(m_connection.get()) == 0;
}

DisplayServer::DisplayServer() {
    if (!environment(qtPlatform).empty())
        return;
    const std::string x11 = environment("DISPLAY");
    const std::string wayland = environment("WAYLAND_DISPLAY");
    if (!x11.empty() && tryX11())
        qputenv(qtPlatform, "xcb");
    else if (!wayland.empty() && waylandAnswers(wayland))
        qputenv(qtPlatform, "wayland");
    else if (x11.empty() && wayland.empty())
        m_error = "there is no display: neither DISPLAY nor WAYLAND_DISPLAY is set";
    else
        m_error = "the display '" + (x11.empty() ? wayland : x11) + "' does not answer";
}

} // namespace quorvane
