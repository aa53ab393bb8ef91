#pragma once

#include "platform/Canvas.h"

namespace quorvane {

/// Draws with AppKit into the view that is being drawn, which has to be a flipped one. Measuring
/// works at any time.
class MacCanvas final : public Canvas {
public:
    [[nodiscard]] Size measure(std::string_view text, const TextStyle& style,
                               double width) override;
    void drawText(std::string_view text, const TextStyle& style, double x, double y,
                  double width) override;
    void strokeArc(double centerX, double centerY, double radius, double lineWidth, double fraction,
                   const Color& color) override;

    /// No effect: spinners are views of their own.
    void drawSpinner(const Spinner& /*spinner*/) override {}
};

} // namespace quorvane
