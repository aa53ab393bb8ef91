#include "platform/linux/overlays/TextLayouts.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QPainter>
#include <algorithm>

#include "platform/linux/overlays/QtColor.h"

namespace quorvane {

namespace {

constexpr auto preferredFont = "Inter";

// More than a page has texts, with what replaces them at the next change.
constexpr std::size_t keptTexts = 16;

const QString& systemFont() {
    static const QString family = QFontDatabase::hasFamily(QLatin1String(preferredFont))
                                      ? QString::fromLatin1(preferredFont)
                                      : QGuiApplication::font().family();
    return family;
}

QFont::Weight qtWeight(TextStyle::Weight weight) {
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

QFont qtFont(const TextStyle& style) {
    QFont font(systemFont());
    // The painter's unit is a point, whatever the screen's resolution.
    font.setPixelSize(qRound(style.size));
    font.setWeight(qtWeight(style.weight));
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

} // namespace

Size TextLayouts::measure(std::string_view text, const TextStyle& style, double width) {
    return find(text, style, width).room;
}

void TextLayouts::draw(QPainter& painter, std::string_view text, const TextStyle& style,
                       QPointF corner, double width) {
    painter.setPen(qtColor(style.color));
    find(text, style, width).layout.draw(&painter, corner);
}

TextLayouts::Entry& TextLayouts::find(std::string_view text, const TextStyle& style, double width) {
    const auto found = std::find_if(m_entries.begin(), m_entries.end(), [&](const Entry& entry) {
        return entry.text == text && entry.style == style && entry.width == width;
    });
    if (found != m_entries.end()) {
        m_entries.splice(m_entries.begin(), m_entries, found);
        return m_entries.front();
    }
    if (m_entries.size() == keptTexts)
        m_entries.pop_back();
    Entry& entry = m_entries.emplace_front();
    entry.text = text;
    entry.style = style;
    entry.width = width;
    QString lines = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    lines.replace(QLatin1Char('\n'), QChar::LineSeparator);
    entry.layout.setText(lines);
    entry.layout.setFont(qtFont(style));
    entry.room = layOut(entry.layout, width);
    return entry;
}

} // namespace quorvane
