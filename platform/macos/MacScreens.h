#pragma once

#include "platform/Screens.h"

namespace quorvane {

/// The window server's screens, and panels over them.
class MacScreens final : public ScreenService {
public:
    [[nodiscard]] std::shared_ptr<Screen> mainScreen() override;

    [[nodiscard]] std::string obstacle() override { return {}; }

    [[nodiscard]] std::shared_ptr<OverlayPanel>
    createPanel(const Rect& contentRect, unsigned styleMask, unsigned backing, bool defer) override;
};

} // namespace quorvane
