#pragma once

#include <string>

class QWindow;

namespace quorvane {

/// What a desktop gives a program that it starts, by which the program may take the focus and tells
/// that it is there. Both empty when it was started in a terminal.
struct StartupTokens {
    /// On X11, as in DESKTOP_STARTUP_ID.
    std::string id;
    /// In a Wayland session, as in XDG_ACTIVATION_TOKEN.
    std::string activation;
};

/// Un-minimises the window, raises it and gives it the focus, because a person has asked for it. On
/// X11 it waits for the X server, as Qt does.
void bringToFront(QWindow& window, const StartupTokens& tokens);

} // namespace quorvane
