#pragma once

#include <memory>
#include <optional>

#include "platform/Screens.h"

namespace quorvane {

/// What tells one kind of overlay from another.
struct OverlayAppearance {
    bool opaque = true;
    Color background;
    /// None: left as the panel has it.
    std::optional<bool> ignoresMouseEvents;
    /// Seconds after which the panel is to be gone; 0: none.
    double timeLimit = 0;
};

/// Puts a panel with `view` over the whole of `screen`, above everything, without activating the
/// application; gives the panel that is up. Main thread only.
[[nodiscard]] std::shared_ptr<OverlayPanel> showOverlay(ScreenService& screens,
                                                        const Screen& screen,
                                                        const OverlayAppearance& appearance,
                                                        std::shared_ptr<const OverlayView> view);

} // namespace quorvane
