#include "platform/linux/PaintedOverlay.h"

#include <cstring>
#include <utility>

namespace quorvane {

namespace {

QRect pixelsAround(const Rect& rect, double scale) {
    return QRectF(rect.x * scale, rect.y * scale, rect.width * scale, rect.height * scale)
        .toAlignedRect();
}

void copyRows(const QImage& from, QImage& to, QPoint place) {
    constexpr qsizetype bytesPerPixel = 4;
    for (int row = 0; row < from.height(); ++row)
        std::memcpy(to.scanLine(place.y() + row) + place.x() * bytesPerPixel,
                    from.constScanLine(row), static_cast<size_t>(from.width() * bytesPerPixel));
}

} // namespace

PaintedOverlay::PaintedOverlay(std::shared_ptr<const OverlayView> view, double scale)
    : m_view(std::move(view)), m_scale(scale) {}

Size PaintedOverlay::sizeOf(const QImage& image) const {
    return {.width = image.width() / m_scale, .height = image.height() / m_scale};
}

void PaintedOverlay::drawAll(QImage& image) {
    const Size size = sizeOf(image);
    {
        QPainter painter(&image);
        painter.scale(m_scale, m_scale);
        PaintedCanvas canvas(painter, m_texts);
        m_view->drawStill(canvas, size);
        m_spinner = m_view->spinner(canvas, size);
    }
    m_region = changingPixels(image);
    m_still = image.copy(m_region);
    m_work = QImage(m_still.size(), m_still.format());
    // Nothing but what has just been kept is drawn over, so this does not come back here.
    static_cast<void>(drawChanges(image));
}

QRect PaintedOverlay::changingPixels(const QImage& image) {
    QImage nowhere(1, 1, QImage::Format_RGB32);
    QPainter painter(&nowhere);
    PaintedCanvas canvas(painter, m_texts);
    QRect pixels = pixelsAround(m_view->changingBounds(canvas, sizeOf(image)), m_scale);
    if (m_spinner)
        pixels |= pixelsAround(spinnerBounds(*m_spinner), m_scale);
    return pixels & image.rect();
}

QRect PaintedOverlay::drawChanges(QImage& image) {
    if (m_region.isEmpty())
        return {};
    copyRows(m_still, m_work, {0, 0});
    paintChanging(m_work, sizeOf(image));
    // In one go: the display server may be reading the image, and never finds it half drawn.
    copyRows(m_work, image, m_region.topLeft());
    return m_region;
}

void PaintedOverlay::paintChanging(QImage& part, Size size) {
    QPainter painter(&part);
    painter.translate(-m_region.topLeft());
    painter.scale(m_scale, m_scale);
    PaintedCanvas canvas(painter, m_texts);
    m_view->drawChanging(canvas, size);
    if (m_spinner)
        drawSpinner(painter, *m_spinner, m_step);
}

void PaintedOverlay::turnSpinner() {
    m_step = (m_step + 1) % spinnerSteps;
}

} // namespace quorvane
