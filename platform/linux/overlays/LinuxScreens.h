#pragma once

#include <memory>

#include "platform/Screens.h"

namespace quorvane {

class X11OverlayStack;

/// The screens of an X server, Xwayland included, and panels over them that are windows of ours,
/// drawn in memory without the toolkit's scene. Needs a QGuiApplication by the time it is first
/// asked for something; nothing is opened before, and a connection that has ended is replaced when
/// the next panel is to come. Where Qt is not on X11, or the server does not answer, there
/// is no main screen, and panels show nowhere.
class LinuxScreens final : public ScreenService {
public:
    LinuxScreens();
    /// Takes every panel away.
    ~LinuxScreens() override;

    [[nodiscard]] std::shared_ptr<Screen> mainScreen() override;
    [[nodiscard]] std::shared_ptr<OverlayPanel>
    createPanel(const Rect& contentRect, unsigned styleMask, unsigned backing, bool defer) override;

private:
    [[nodiscard]] const std::shared_ptr<X11OverlayStack>& overlays();

    std::shared_ptr<X11OverlayStack> m_stack;
};

} // namespace quorvane
