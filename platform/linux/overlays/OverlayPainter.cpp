#include "platform/linux/overlays/OverlayPainter.h"

#include <QPainter>
#include <utility>

#include "platform/linux/overlays/QtColor.h"

namespace quorvane {

OverlayPainter::OverlayPainter(std::shared_ptr<const OverlayView> view, QSize size, double scale)
    : m_view(std::move(view)), m_size{.width = size.width() / scale,
                                      .height = size.height() / scale},
      m_scale(scale) {
    m_drawing = list();
}

std::unique_ptr<DrawingList> OverlayPainter::list() {
    auto drawing = std::make_unique<DrawingList>(m_measuring, m_scale);
    m_view->draw(*drawing, m_size);
    return drawing;
}

std::vector<OverlayPicture> OverlayPainter::paint(const QRect& area) {
    std::vector<OverlayPicture> pictures;
    for (const Rect& each : m_drawing->areas())
        if (pixels(each).intersects(area))
            pictures.push_back(paint(each));
    return pictures;
}

std::vector<OverlayPicture> OverlayPainter::paintChanges() {
    const auto before = std::exchange(m_drawing, list());
    std::vector<OverlayPicture> pictures;
    for (const Rect& each : m_drawing->changes(*before))
        pictures.push_back(paint(each));
    return pictures;
}

OverlayPicture OverlayPainter::turnSpinner() {
    ++m_spinnerStep;
    return paint(m_drawing->spinner()->bounds());
}

QRect OverlayPainter::pixels(const Rect& area) const {
    return QRectF(area.x * m_scale, area.y * m_scale, area.width * m_scale, area.height * m_scale)
        .toAlignedRect();
}

OverlayPicture OverlayPainter::paint(const Rect& area) {
    const QRect place = pixels(area);
    // Letters are smoothed better over the colour that they will be seen on.
    const Color back = m_view->backLayer();
    const bool opaque = back.alpha >= 1;
    OverlayPicture picture{.image =
                               QImage(place.size(), opaque ? QImage::Format_RGB32
                                                           : QImage::Format_ARGB32_Premultiplied),
                           .corner = place.topLeft()};
    picture.image.fill(opaque ? qtColor(back) : Qt::transparent);
    QPainter painter(&picture.image);
    painter.translate(-place.topLeft());
    painter.scale(m_scale, m_scale);
    PaintedCanvas canvas(&painter, m_texts, m_spinnerStep);
    m_drawing->draw(canvas, area);
    return picture;
}

} // namespace quorvane
