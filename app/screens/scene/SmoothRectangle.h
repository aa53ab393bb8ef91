#pragma once

#include "app/screens/scene/PictureItem.h"

namespace quorvane {

/// A filled rectangle whose curvature has no jump between its edges and its round corners.
class SmoothRectangle : public quorvane::PictureItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY lookChanged REQUIRED FINAL)
    /// Radius in points of the circles that the corners approximate.
    Q_PROPERTY(double radius MEMBER m_radius NOTIFY lookChanged FINAL)

public:
    explicit SmoothRectangle(QQuickItem* parent = nullptr);

signals:
    void lookChanged();

protected:
    void draw(QPainter& painter) const override;

private:
    QColor m_color;
    double m_radius = 0;
};

} // namespace quorvane
