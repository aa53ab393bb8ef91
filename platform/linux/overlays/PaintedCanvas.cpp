#include "platform/linux/overlays/PaintedCanvas.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>

#include "platform/linux/overlays/QtColor.h"

namespace quorvane {

namespace {

// Points, of a spinner at its own size.
constexpr double spokeLine = 3;
constexpr double spokeInner = 8;
constexpr double spokeOuter = 14;
constexpr double faintestSpoke = 0.15;

} // namespace

PaintedCanvas::PaintedCanvas(QPainter* painter, TextLayouts& texts, int spinnerStep)
    : m_painter(painter), m_texts(texts), m_spinnerStep(spinnerStep % spinnerSteps) {
    if (m_painter)
        m_painter->setRenderHints(QPainter::TextAntialiasing | QPainter::Antialiasing);
}

Size PaintedCanvas::measure(std::string_view text, const TextStyle& style, double width) {
    return m_texts.measure(text, style, width);
}

void PaintedCanvas::drawText(std::string_view text, const TextStyle& style, double x, double y,
                             double width) {
    m_texts.draw(*m_painter, text, style, {x, y}, width);
}

void PaintedCanvas::strokeArc(double centerX, double centerY, double radius, double lineWidth,
                              double fraction, const Color& color) {
    if (fraction <= 0)
        return;
    const QRectF square(centerX - radius, centerY - radius, 2 * radius, 2 * radius);
    QPainterPath path;
    // A whole circle has no ends, and so no seam at the top.
    if (fraction >= 1) {
        path.addEllipse(square);
    } else {
        path.arcMoveTo(square, 90);
        path.arcTo(square, 90, -360 * fraction);
    }
    m_painter->strokePath(
        path, QPen(qtColor(color), lineWidth, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
}

/// Strokes around a circle: the one at the step in full, those behind it fading.
void PaintedCanvas::drawSpinner(const Spinner& spinner) {
    m_painter->save();
    m_painter->translate(spinner.centerX, spinner.centerY);
    m_painter->scale(spinner.scale, spinner.scale);
    m_painter->rotate(360.0 / spinnerSteps * m_spinnerStep);
    QColor color = qtColor(spinner.tint);
    const float full = color.alphaF();
    for (int behind = 0; behind < spinnerSteps; ++behind) {
        const double part = 1 - static_cast<double>(behind) / spinnerSteps;
        color.setAlphaF(full * static_cast<float>(std::max(part, faintestSpoke)));
        m_painter->setPen(QPen(color, spokeLine, Qt::SolidLine, Qt::RoundCap));
        m_painter->drawLine(QPointF(0, -spokeInner), QPointF(0, -spokeOuter));
        m_painter->rotate(-360.0 / spinnerSteps);
    }
    m_painter->restore();
}

} // namespace quorvane
