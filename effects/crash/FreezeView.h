#pragma once

#include "platform/Screens.h"

namespace quorvane {

/// Whitens the desktop, under a large spinner and "(Not Responding)". Never changes.
class FreezeView final : public OverlayView {
public:
    [[nodiscard]] Color backLayer() const override;
    void draw(Canvas& canvas, Size size) const override;
};

} // namespace quorvane
