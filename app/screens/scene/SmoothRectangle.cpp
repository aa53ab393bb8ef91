#include "app/screens/scene/SmoothRectangle.h"

#include <QPainter>
#include <QPolygonF>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace quorvane {

namespace {

// Each corner is a quarter of the superellipse |x|^n + |y|^n = 1, whose curvature is 0 at its ends.
// It is 1.5 times as long as the circle's, and cuts off as much at its middle.
constexpr double reachOfARadius = 1.5;
constexpr double exponent = 3.19;
constexpr int pointsOfACorner = 32;

// Point 0 is on the vertical edge, the last one on the horizontal. (0, 0) is where the edges would
// meet, and 1 is how far the corner reaches.
QPointF onCorner(int point) {
    const double angle = std::numbers::pi / 2 * point / pointsOfACorner;
    return {1 - std::pow(std::cos(angle), 2 / exponent),
            1 - std::pow(std::sin(angle), 2 / exponent)};
}

QPolygonF smoothRectangle(const QSizeF& size, double radius) {
    const double reach =
        std::min(reachOfARadius * radius, std::min(size.width(), size.height()) / 2);
    const auto topLeft = [&](int point) { return onCorner(point) * reach; };
    QPolygonF outline;
    for (int i = 0; i <= pointsOfACorner; ++i)
        outline << topLeft(i);
    for (int i = pointsOfACorner; i >= 0; --i)
        outline << QPointF(size.width() - topLeft(i).x(), topLeft(i).y());
    for (int i = 0; i <= pointsOfACorner; ++i)
        outline << QPointF(size.width() - topLeft(i).x(), size.height() - topLeft(i).y());
    for (int i = pointsOfACorner; i >= 0; --i)
        outline << QPointF(topLeft(i).x(), size.height() - topLeft(i).y());
    return outline;
}

} // namespace

SmoothRectangle::SmoothRectangle(QQuickItem* parent) : PictureItem(parent) {
    connect(this, &SmoothRectangle::lookChanged, this, [this] { redraw(); });
}

void SmoothRectangle::draw(QPainter& painter) const {
    painter.setPen(Qt::NoPen);
    painter.setBrush(m_color);
    painter.drawPolygon(smoothRectangle(size(), m_radius));
}

} // namespace quorvane
