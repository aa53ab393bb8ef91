#pragma once

#include <memory>

#include "platform/Screens.h"

namespace quorvane {

class SessionLock;
class X11OverlayStack;

/// The screens of an X server, Xwayland included, and panels over them: X11 windows, whatever Qt
/// draws its own with. Connects on first use, which needs a QGuiApplication; a lost connection is
/// replaced for the next panel. No panel is seen while the session is locked. Without an X server,
/// a monitor, or true colours there is no main screen, and panels do not show.
class LinuxScreens final : public ScreenService {
public:
    LinuxScreens();
    /// Removes all panels.
    ~LinuxScreens() override;

    [[nodiscard]] std::shared_ptr<Screen> mainScreen() override;
    [[nodiscard]] std::string obstacle() override;
    [[nodiscard]] std::shared_ptr<OverlayPanel>
    createPanel(const Rect& contentRect, unsigned styleMask, unsigned backing, bool defer) override;

private:
    [[nodiscard]] const std::shared_ptr<X11OverlayStack>& overlays();

    // Made at first use, and kept when the connection to the server is replaced.
    std::unique_ptr<SessionLock> m_lock;
    std::shared_ptr<X11OverlayStack> m_stack;
};

} // namespace quorvane
