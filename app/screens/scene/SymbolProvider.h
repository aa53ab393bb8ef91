#pragma once

#include <QQuickImageProvider>

#include "platform/Desktop.h"

namespace quorvane {

/// White symbols as "image://symbols/NAME": the desktop's own, or else the program's drawing of
/// that name. Empty if there is neither.
class SymbolProvider final : public QQuickImageProvider {
public:
    /// `desktop` outlives it.
    explicit SymbolProvider(const Desktop& desktop)
        : QQuickImageProvider(QQuickImageProvider::Image), m_desktop(desktop) {}

    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;

private:
    const Desktop& m_desktop;
};

} // namespace quorvane
