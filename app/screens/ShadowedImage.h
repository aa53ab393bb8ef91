#pragma once

#include <QUrl>

#include "app/screens/PictureItem.h"

namespace quorvane {

/// A picture of a local file, as large as it can be drawn in `height` without losing its shape.
/// Takes no place if there is no such picture.
class ShadowedImage : public quorvane::PictureItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QUrl source READ source WRITE setSource NOTIFY sourceChanged REQUIRED FINAL)
    /// The height at which it is shown.
    Q_PROPERTY(double shownHeight MEMBER m_shownHeight NOTIFY shownHeightChanged REQUIRED FINAL)
    Q_PROPERTY(bool present READ isPresent NOTIFY sourceChanged FINAL)

public:
    explicit ShadowedImage(QQuickItem* parent = nullptr);

    [[nodiscard]] QUrl source() const { return m_source; }

    void setSource(const QUrl& source);

    [[nodiscard]] bool isPresent() const { return !m_image.isNull(); }

signals:
    void sourceChanged();
    void shownHeightChanged();

protected:
    void draw(QPainter& painter) const override;

private:
    void measure();

    QUrl m_source;
    double m_shownHeight = 0;
    QImage m_image;
};

} // namespace quorvane
