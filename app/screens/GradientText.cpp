#include "app/screens/GradientText.h"

#include <QFontInfo>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QLinearGradient>
#include <QPainter>
#include <QPen>

#include <cmath>

namespace quorvane {

GradientText::GradientText(QQuickItem* parent)
    : QQuickPaintedItem(parent), m_font(QGuiApplication::font()) {
    // The screens give their sizes in pixels, and the toolkit complains about a font with both.
    m_font.setPixelSize(QFontInfo(m_font).pixelSize());
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
