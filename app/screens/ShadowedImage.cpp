#include "app/screens/ShadowedImage.h"

#include <QPaintDevice>
#include <QPainter>

namespace quorvane {

ShadowedImage::ShadowedImage(QQuickItem* parent) : PictureItem(parent) {
    connect(this, &ShadowedImage::shownHeightChanged, this, &ShadowedImage::measure);
}

void ShadowedImage::setSource(const QUrl& source) {
    if (m_source == source)
        return;
    m_source = source;
    m_image = source.isEmpty() ? QImage() : QImage(source.toLocalFile());
    measure();
    redraw();
    emit sourceChanged();
}

void ShadowedImage::measure() {
    if (m_image.isNull())
        setImplicitSize(0, 0);
    else
        setImplicitSize(m_shownHeight * m_image.width() / m_image.height(), m_shownHeight);
}

// The painter's own scaling looks at neighbouring pixels only, too few for a picture several times
// the size.
void ShadowedImage::draw(QPainter& painter) const {
    if (m_image.isNull())
        return;
    const double scale = painter.transform().m11();
    QImage scaled =
        m_image.scaled((size() * scale).toSize(), Qt::KeepAspectRatio, Qt::SmoothTransformation);
    scaled.setDevicePixelRatio(scale);
    painter.drawImage(QPointF(0, 0), scaled);
}

} // namespace quorvane
