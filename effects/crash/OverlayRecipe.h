#pragma once

#include <memory>
#include <optional>

#include "platform/Screens.h"

namespace quorvane {

/// The properties in which the stop screen and the freeze differ.
struct OverlayAppearance {
    bool opaque = true;
    Color background;
    /// None: not set.
    std::optional<bool> ignoresMouseEvents;
    /// See OverlayPanel::setTimeLimit.
    double timeLimit = 0;
};

/// Shows a panel with `view` over the whole of `screen`, above all other windows, without
/// activating the application. Main thread only.
[[nodiscard]] std::shared_ptr<OverlayPanel> showOverlay(ScreenService& screens,
                                                        const Screen& screen,
                                                        const OverlayAppearance& appearance,
                                                        std::shared_ptr<const OverlayView> view);

} // namespace quorvane
