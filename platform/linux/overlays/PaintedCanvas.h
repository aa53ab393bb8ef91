#pragma once

#include "platform/linux/overlays/TextLayouts.h"

class QPainter;

namespace quorvane {

/// Draws with a painter whose unit is a point. Main thread only.
class PaintedCanvas final : public Canvas {
public:
    /// The pictures that a spinner's turn consists of.
    static constexpr int spinnerSteps = 12;

    /// Null for `painter`: only measures. `spinnerStep`: which picture of its turn a spinner shows,
    /// counted from any. The painter and `texts` must outlive the canvas.
    PaintedCanvas(QPainter* painter, TextLayouts& texts, int spinnerStep);

    [[nodiscard]] Size measure(std::string_view text, const TextStyle& style,
                               double width) override;
    void drawText(std::string_view text, const TextStyle& style, double x, double y,
                  double width) override;
    void strokeArc(double centerX, double centerY, double radius, double lineWidth, double fraction,
                   const Color& color) override;
    void drawSpinner(const Spinner& spinner) override;

private:
    QPainter* m_painter;
    TextLayouts& m_texts;
    int m_spinnerStep;
};

} // namespace quorvane
