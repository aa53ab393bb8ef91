#include "app/screens/scene/ShadowedImage.h"

#include <QGuiApplication>
#include <QImageReader>
#include <QPainter>

namespace quorvane {

namespace {

// Without a format, QImageReader would load every image plugin to find the right one.
constexpr auto format = "png";

// QPainter's own scaling looks at neighbouring pixels only: too few for scaling down several times.
QImage load(const QString& file, const QSize& size) {
    const QImage picture = QImageReader(file, format).read();
    return picture.isNull() ? picture
                            : picture.scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

} // namespace

ShadowedImage::ShadowedImage(QQuickItem* parent) : PictureItem(parent) {
    connect(this, &ShadowedImage::shownHeightChanged, this, &ShadowedImage::measure);
}

void ShadowedImage::setSource(const QUrl& source) {
    if (m_source == source)
        return;
    m_source = source;
    m_fileSize = source.isEmpty() ? QSize() : QImageReader(file(), format).size();
    measure();
    redraw();
    emit sourceChanged();
}

QString ShadowedImage::file() const {
    return m_source.toLocalFile();
}

// Loading takes longer than the rest of the screen: another thread does it, and draw() waits; or
// draw() does it where no thread can be started.
void ShadowedImage::measure() {
    if (!isPresent() || m_shownHeight <= 0) {
        setImplicitSize(0, 0);
        return;
    }
    setImplicitSize(m_shownHeight * m_fileSize.width() / m_fileSize.height(), m_shownHeight);
    m_loadedSize =
        (QSizeF(implicitWidth(), implicitHeight()) * qGuiApp->devicePixelRatio()).toSize();
    m_loaded = std::async(load, file(), m_loadedSize);
}

void ShadowedImage::draw(QPainter& painter) const {
    if (!m_loaded.valid())
        return;
    const double scale = painter.transform().m11();
    const QSize wanted = (size() * scale).toSize();
    // This waits for long only after a move to a screen with another scale factor.
    QImage picture = wanted == m_loadedSize ? m_loaded.get() : load(file(), wanted);
    picture.setDevicePixelRatio(scale);
    painter.drawImage(QPointF(0, 0), picture);
}

} // namespace quorvane
