#include "platform/linux/DisplayServer.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>

namespace quorvane {

namespace {

constexpr auto toolkitChoice = "QT_QPA_PLATFORM";

std::string environment(const char* name) {
    const char* value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): before any thread.
    return value ? value : "";
}

bool x11Answers() {
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    const bool answers = xcb_connection_has_error(connection) == 0;
    xcb_disconnect(connection);
    return answers;
}

bool waylandAnswers(const std::string& display) {
    const std::string path =
        (std::filesystem::path(environment("XDG_RUNTIME_DIR")) / display).string();
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path)
        return false;
    std::copy(path.begin(), path.end(), std::begin(address.sun_path));
    const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (descriptor < 0)
        return false;
    // The socket interface takes every family's address through the same pointer.
    const auto* generic = reinterpret_cast<const sockaddr*>(&address);
    const bool answers = connect(descriptor, generic, sizeof address) == 0;
    close(descriptor);
    return answers;
}

void choose(const char* toolkitPlatform) {
    setenv(toolkitChoice, toolkitPlatform, 1); // NOLINT(concurrency-mt-unsafe): before any thread.
}

} // namespace

std::string chooseDisplayServer() {
    if (!environment(toolkitChoice).empty())
        return {};
    const std::string x11 = environment("DISPLAY");
    const std::string wayland = environment("WAYLAND_DISPLAY");
    if (!x11.empty() && x11Answers()) {
        choose("xcb");
        return {};
    }
    if (!wayland.empty() && waylandAnswers(wayland)) {
        choose("wayland");
        return {};
    }
    if (x11.empty() && wayland.empty())
        return "there is no display: neither DISPLAY nor WAYLAND_DISPLAY is set";
    return "the display '" + (x11.empty() ? wayland : x11) + "' does not answer";
}

} // namespace quorvane
