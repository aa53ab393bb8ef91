#pragma once

#include <functional>
#include <optional>

#include "platform/Screens.h"

namespace quorvane {

/// Whitens the desktop, under a large spinner and "(Not Responding)". Never changes.
class FreezeView final : public OverlayView {
public:
    void drawStill(Canvas& canvas, Size size) const override;
    void drawChanging(Canvas& canvas, Size size) const override;
    [[nodiscard]] Rect changingBounds(Canvas& canvas, Size size) const override;
    [[nodiscard]] Subscription observeChanges(std::function<void()> changed) const override;
    [[nodiscard]] std::optional<Spinner> spinner(Canvas& canvas, Size size) const override;
};

} // namespace quorvane
