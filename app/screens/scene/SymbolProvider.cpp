#include "app/screens/scene/SymbolProvider.h"

#include <QImageReader>

namespace quorvane {

namespace {

// A copy: QImage only refers to the pixels that it is given.
QImage imageOf(const SymbolPicture& picture) {
    return QImage(picture.pixels.data(), picture.width, picture.height,
                  static_cast<qsizetype>(picture.pixels.size()) / picture.height,
                  QImage::Format_RGBA8888_Premultiplied)
        .copy();
}

QImage drawnSymbol(const QString& name, const QSize& size) {
    QImageReader drawing(":/symbols/" + name + ".svg");
    drawing.setScaledSize(size);
    return drawing.read();
}

} // namespace

QImage SymbolProvider::requestImage(const QString& id, QSize* size, const QSize& requestedSize) {
    const auto own = m_desktop.symbol(id.toStdString(), requestedSize.width());
    QImage image = own && own->height > 0 ? imageOf(*own) : drawnSymbol(id, requestedSize);
    *size = image.size();
    return image;
}

} // namespace quorvane
