#pragma once

#include <QQuickImageProvider>

namespace quorvane {

/// The symbols that a Mac has, in white, as "image://symbols/NAME".
class SystemSymbols final : public QQuickImageProvider {
public:
    SystemSymbols() : QQuickImageProvider(QQuickImageProvider::Image) {}

    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;
};

} // namespace quorvane
