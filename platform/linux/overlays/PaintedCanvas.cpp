#include "platform/linux/overlays/PaintedCanvas.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QPainterPath>
#include <algorithm>
#include <array>
#include <cstring>

namespace quorvane {

namespace {

constexpr auto preferredFont = "Inter";

// Points, of a spinner at its own size.
constexpr double spokeLine = 3;
constexpr double spokeInner = 8;
constexpr double spokeOuter = 14;
constexpr double faintestSpoke = 0.15;

const QString& systemFont() {
    static const QString family = QFontDatabase::hasFamily(QLatin1String(preferredFont))
                                      ? QString::fromLatin1(preferredFont)
                                      : QGuiApplication::font().family();
    return family;
}

QFont::Weight toolkitWeight(TextStyle::Weight weight) {
    switch (weight) {
    case TextStyle::Weight::Light:
        return QFont::Light;
    case TextStyle::Weight::Medium:
        return QFont::Medium;
    case TextStyle::Weight::Bold:
        return QFont::Bold;
    case TextStyle::Weight::Regular:
        break;
    }
    return QFont::Normal;
}

QFont toolkitFont(const TextStyle& style) {
    QFont font(systemFont());
    // The painter's unit is a point, whatever the resolution says.
    font.setPixelSize(qRound(style.size));
    font.setWeight(toolkitWeight(style.weight));
    // Letters keep their distances at every scale factor.
    font.setHintingPreference(QFont::PreferVerticalHinting);
    return font;
}

Size layOut(QTextLayout& layout, double width) {
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.setCacheEnabled(true);
    Size room;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        line.setPosition({0, room.height});
        room.height += line.height();
        room.width = std::max(room.width, line.naturalTextWidth());
    }
    layout.endLayout();
    return room;
}

// All that decides about how a text is laid out; its colour does not.
std::string layoutKey(std::string_view text, const TextStyle& style, double width) {
    const std::array<double, 3> numbers{style.size, static_cast<double>(style.weight), width};
    std::array<char, sizeof numbers> bytes{};
    std::memcpy(bytes.data(), numbers.data(), sizeof numbers);
    std::string key(bytes.data(), bytes.size());
    return key.append(text);
}

} // namespace

QColor toolkitColor(const Color& color) {
    return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                            static_cast<float>(color.blue), static_cast<float>(color.alpha));
}

const LaidOutTexts::Text& LaidOutTexts::get(std::string_view text, const TextStyle& style,
                                            double width) {
    std::unique_ptr<Text>& kept = m_texts[layoutKey(text, style, width)];
    if (!kept) {
        kept = std::make_unique<Text>();
        QString lines = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
        lines.replace(QLatin1Char('\n'), QChar::LineSeparator);
        kept->layout.setText(lines);
        kept->layout.setFont(font(style));
        kept->room = layOut(kept->layout, width);
    }
    return *kept;
}

const QFont& LaidOutTexts::font(const TextStyle& style) {
    const auto kept = std::find_if(m_fonts.begin(), m_fonts.end(),
                                   [&style](const auto& each) { return each.first == style; });
    if (kept != m_fonts.end())
        return kept->second;
    return m_fonts.emplace_back(style, toolkitFont(style)).second;
}

PaintedCanvas::PaintedCanvas(QPainter& painter, LaidOutTexts& texts)
    : m_painter(painter), m_texts(texts) {
    m_painter.setRenderHints(QPainter::TextAntialiasing);
}

Size PaintedCanvas::measure(std::string_view text, const TextStyle& style, double width) {
    return m_texts.get(text, style, width).room;
}

void PaintedCanvas::drawText(std::string_view text, const TextStyle& style, double x, double y,
                             double width) {
    m_painter.setPen(toolkitColor(style.color));
    m_texts.get(text, style, width).layout.draw(&m_painter, {x, y});
}

void PaintedCanvas::fill(const Rect& rect, const Color& color) {
    m_painter.fillRect(QRectF(rect.x, rect.y, rect.width, rect.height), toolkitColor(color));
}

void PaintedCanvas::strokeArc(double centerX, double centerY, double radius, double lineWidth,
                              double fraction, const Color& color) {
    strokeArc(centerX, centerY, radius, lineWidth, 0, fraction, color);
}

void PaintedCanvas::strokeArc(double centerX, double centerY, double radius, double lineWidth,
                              double from, double to, const Color& color) {
    if (to <= from)
        return;
    const QRectF square(centerX - radius, centerY - radius, 2 * radius, 2 * radius);
    QPainterPath path;
    // A whole circle has no ends, and so no seam at the top.
    if (from <= 0 && to >= 1) {
        path.addEllipse(square);
    } else {
        const double start = 90 - 360 * from;
        path.arcMoveTo(square, start);
        path.arcTo(square, start, -360 * (to - from));
    }
    m_painter.setRenderHint(QPainter::Antialiasing);
    m_painter.strokePath(
        path, QPen(toolkitColor(color), lineWidth, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
    m_painter.setRenderHint(QPainter::Antialiasing, false);
}

Rect spinnerBounds(const Spinner& spinner) {
    const double size = Spinner::size * spinner.scale;
    return {.x = spinner.centerX - size / 2,
            .y = spinner.centerY - size / 2,
            .width = size,
            .height = size};
}

void drawSpinner(QPainter& painter, const Spinner& spinner, int step) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(spinner.centerX, spinner.centerY);
    painter.scale(spinner.scale, spinner.scale);
    painter.rotate(360.0 / spinnerSteps * (step % spinnerSteps));
    QColor color = toolkitColor(spinner.tint);
    const float full = color.alphaF();
    for (int behind = 0; behind < spinnerSteps; ++behind) {
        const double part = 1 - static_cast<double>(behind) / spinnerSteps;
        color.setAlphaF(full * static_cast<float>(std::max(part, faintestSpoke)));
        painter.setPen(QPen(color, spokeLine, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(QPointF(0, -spokeInner), QPointF(0, -spokeOuter));
        painter.rotate(-360.0 / spinnerSteps);
    }
    painter.restore();
}

} // namespace quorvane
