#include "effects/crash/OverlayRecipe.h"

#include <utility>

namespace quorvane {

std::shared_ptr<OverlayPanel> showOverlay(ScreenService& screens, const Screen& screen,
                                          const OverlayAppearance& appearance,
                                          std::shared_ptr<const OverlayView> view) {
    auto panel = screens.createPanel(screen.frame(), PanelStyle::nonactivatingPanel,
                                     PanelBacking::buffered, /*defer=*/false);
    panel->setLevel(PanelLevel::screenSaver);
    panel->setOpaque(appearance.opaque);
    panel->setBackgroundColor(appearance.background);
    panel->setCollectionBehavior(PanelCollectionBehavior::canJoinAllSpaces |
                                 PanelCollectionBehavior::fullScreenAuxiliary);
    if (appearance.ignoresMouseEvents)
        panel->setIgnoresMouseEvents(*appearance.ignoresMouseEvents);
    panel->setTimeLimit(appearance.timeLimit);
    panel->setContentView(std::move(view));
    // Read again: the screen may have changed since the panel was made.
    panel->setFrame(screen.frame(), /*display=*/true);
    panel->orderFrontRegardless();
    return panel;
}

} // namespace quorvane
