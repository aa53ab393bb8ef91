#include "platform/linux/overlays/PaintedOverlay.h"

#include <cstring>
#include <utility>

namespace quorvane {

namespace {

QRect pixelsAround(const Rect& rect, double scale) {
    return QRectF(rect.x * scale, rect.y * scale, rect.width * scale, rect.height * scale)
        .toAlignedRect();
}

void copyRows(const QImage& from, QPoint start, QImage& to, const QRect& place) {
    constexpr qsizetype bytesPerPixel = 4;
    for (int row = 0; row < place.height(); ++row)
        std::memcpy(to.scanLine(place.y() + row) + place.x() * bytesPerPixel,
                    from.constScanLine(start.y() + row) + start.x() * bytesPerPixel,
                    static_cast<size_t>(place.width() * bytesPerPixel));
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
    m_drawn.clear();
    m_paintedStep.reset();
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

QRegion PaintedOverlay::drawChanges(QImage& image) {
    if (m_region.isEmpty())
        return {};
    QRegion changed = changedPixels(sizeOf(image));
    for (const QRect& part : std::as_const(changed)) {
        const QRect here = part.translated(-m_region.topLeft());
        copyRows(m_still, here.topLeft(), m_work, here);
        paintChanging(part);
        // In one go: the display server may be reading the image, and never finds it half drawn.
        copyRows(m_work, here.topLeft(), image, part);
    }
    return changed;
}

QRegion PaintedOverlay::changedPixels(Size size) {
    m_next.clear();
    m_view->drawChanging(m_next, size);
    QRegion changed;
    for (const Rect& rect : m_next.differences(m_drawn))
        changed += pixelsAround(rect, m_scale);
    m_drawn.swap(m_next);
    if (m_spinner && std::exchange(m_paintedStep, m_step) != m_step)
        changed += pixelsAround(spinnerBounds(*m_spinner), m_scale);
    return changed & m_region;
}

void PaintedOverlay::paintChanging(const QRect& part) {
    QPainter painter(&m_work);
    painter.setClipRect(part.translated(-m_region.topLeft()));
    painter.translate(-m_region.topLeft());
    painter.scale(m_scale, m_scale);
    PaintedCanvas canvas(painter, m_texts);
    m_drawn.paint(canvas, {.x = part.x() / m_scale,
                           .y = part.y() / m_scale,
                           .width = part.width() / m_scale,
                           .height = part.height() / m_scale});
    if (m_spinner)
        drawSpinner(painter, *m_spinner, m_step);
}

void PaintedOverlay::turnSpinner() {
    m_step = (m_step + 1) % spinnerSteps;
}

} // namespace quorvane
