#include "app/screens/SystemSymbols.h"

#include "platform/macos/MacSymbols.h"

namespace quorvane {

QImage SystemSymbols::requestImage(const QString& id, QSize* size, const QSize& requestedSize) {
    constexpr Color white{.red = 1, .green = 1, .blue = 1};
    const auto picture = drawSystemSymbol(id.toStdString(), requestedSize.width(), white);
    if (!picture)
        return {};
    *size = {picture->width, picture->height};
    // The image refers to the picture, which is gone after this.
    return QImage(picture->pixels.data(), picture->width, picture->height,
                  static_cast<qsizetype>(picture->pixels.size()) / picture->height,
                  QImage::Format_RGBA8888_Premultiplied)
        .copy();
}

} // namespace quorvane
