#include "app/screens/GradientText.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QLinearGradient>
#include <QPainter>
#include <QPen>

namespace quorvane {

GradientText::GradientText(QQuickItem* parent)
    : QQuickPaintedItem(parent), m_font(QGuiApplication::font()) {
    setAntialiasing(true);
    connect(this, &GradientText::colorsChanged, this, [this] { update(); });
}

void GradientText::setText(const QString& text) {
    if (m_text == text)
        return;
    m_text = text;
    measure();
    emit textChanged();
}

void GradientText::setFont(const QFont& font) {
    if (m_font == font)
        return;
    m_font = font;
    measure();
    emit fontChanged();
}

void GradientText::measure() {
    const QFontMetricsF metrics(m_font);
    setImplicitSize(std::ceil(metrics.horizontalAdvance(m_text)), std::ceil(metrics.height()));
    update();
}

void GradientText::paint(QPainter* painter) {
    QLinearGradient gradient(0, 0, width(), 0);
    gradient.setColorAt(0, m_first);
    gradient.setColorAt(0.5, m_middle);
    gradient.setColorAt(1, m_last);
    painter->setFont(m_font);
    painter->setPen(QPen(QBrush(gradient), 0));
    painter->drawText(boundingRect(), Qt::AlignCenter, m_text);
}

} // namespace quorvane
