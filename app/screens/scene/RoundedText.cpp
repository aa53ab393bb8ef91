#include "app/screens/scene/RoundedText.h"

#include <QGlyphRun>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <QRawFont>

#include <cmath>

#include "app/screens/Fonts.h"

namespace quorvane {

namespace {

QPainterPath outlines(const QGlyphRun& run) {
    const QRawFont font = run.rawFont();
    const auto glyphs = run.glyphIndexes();
    const auto positions = run.positions();
    QPainterPath path;
    for (qsizetype i = 0; i < glyphs.size(); ++i)
        path.addPath(font.pathForGlyph(glyphs[i]).translated(positions[i]));
    path.setFillRule(Qt::WindingFill);
    return path;
}

} // namespace

RoundedText::RoundedText(QQuickItem* parent) : PictureItem(parent) {
    connect(this, &RoundedText::colorsChanged, this, [this] { redraw(); });
}

void RoundedText::setText(const QString& text) {
    if (m_text == text)
        return;
    m_text = text;
    layOut();
}

void RoundedText::setPixelSize(int size) {
    if (m_pixelSize == size)
        return;
    m_pixelSize = size;
    layOut();
}

void RoundedText::setEmoji(bool emoji) {
    if (m_emoji == emoji)
        return;
    m_emoji = emoji;
    layOut();
}

void RoundedText::layOut() {
    m_layout.setText(m_text);
    m_layout.setFont(m_emoji ? Fonts::emoji(m_pixelSize) : Fonts::heavy(m_pixelSize));
    m_layout.beginLayout();
    QTextLine line = m_layout.createLine();
    m_layout.endLayout();
    setImplicitSize(std::ceil(line.naturalTextWidth()), std::ceil(line.height()));
    redraw();
    emit textChanged();
}

QBrush RoundedText::brush() const {
    if (m_colors.size() < 3)
        return m_colors.value(0, Qt::white);
    QLinearGradient gradient(0, 0, implicitWidth(), 0);
    gradient.setColorAt(0, m_colors[0]);
    gradient.setColorAt(0.5, m_colors[1]);
    gradient.setColorAt(1, m_colors[2]);
    return gradient;
}

// Letters are filled and stroked, to be heavier; emoji have no outlines and are drawn as they are.
void RoundedText::draw(QPainter& painter) const {
    const QBrush fill = brush();
    for (const QGlyphRun& run : m_layout.glyphRuns()) {
        const QRawFont font = run.rawFont();
        const double thickness = Fonts::outline(font.familyName(), font.pixelSize());
        const QPen pen(fill, thickness, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
        if (thickness > 0) {
            const QPainterPath path = outlines(run);
            painter.fillPath(path, fill);
            painter.strokePath(path, pen);
        } else {
            painter.setPen(QPen(fill, 0));
            painter.drawGlyphRun({}, run);
        }
    }
}

} // namespace quorvane
