#pragma once

#include <QUrl>

#include <future>

#include "app/screens/scene/PictureItem.h"

namespace quorvane {

/// A local PNG file at a height of `shownHeight`, in its own aspect ratio. Only the scaled picture
/// is kept. Takes no room if there is no such file.
class ShadowedImage : public quorvane::PictureItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QUrl source READ source WRITE setSource NOTIFY sourceChanged REQUIRED FINAL)
    /// In points.
    Q_PROPERTY(double shownHeight MEMBER m_shownHeight NOTIFY shownHeightChanged REQUIRED FINAL)
    Q_PROPERTY(bool present READ isPresent NOTIFY sourceChanged FINAL)

public:
    explicit ShadowedImage(QQuickItem* parent = nullptr);

    [[nodiscard]] QUrl source() const { return m_source; }

    void setSource(const QUrl& source);

    [[nodiscard]] bool isPresent() const { return !m_fileSize.isEmpty(); }

signals:
    void sourceChanged();
    void shownHeightChanged();

protected:
    void draw(QPainter& painter) const override;

private:
    void measure();
    [[nodiscard]] QString file() const;

    QUrl m_source;
    double m_shownHeight = 0;
    QSize m_fileSize;
    // In the window's pixels.
    QSize m_loadedSize;
    std::shared_future<QImage> m_loaded;
};

} // namespace quorvane
