#include "app/screens/Fonts.h"

#include <QFontDatabase>
#include <QGuiApplication>

#include <utility>

namespace quorvane::Fonts {

namespace {

constexpr auto textFont = "Inter";

// Its heaviest weight is bold. An outline with round joins makes it as heavy as black, and rounder.
constexpr auto roundedFont = "Quicksand";
constexpr double outlineOfAnEm = 0.062;

FontFamilies& desktopFamilies() {
    static FontFamilies families;
    return families;
}

QString emojiFamily() {
    return QString::fromStdString(desktopFamilies().emoji);
}

// Empty if there is none. QFontDatabase does not list the rounded family of macOS: not looked up.
QString roundedFamily() {
    if (const std::string& own = desktopFamilies().rounded; !own.empty())
        return QString::fromStdString(own);
    return QFontDatabase::hasFamily(roundedFont) ? QString(roundedFont) : QString();
}

} // namespace

void setFamilies(FontFamilies families) {
    desktopFamilies() = std::move(families);
}

// The emoji font comes last, for the emoji within a text. Only an installed font may come first:
// for a missing one, Qt takes all letters from the next family in the list.
QFont text(QFont base) {
    QStringList families = base.families();
    if (QFontDatabase::hasFamily(textFont) && !families.contains(textFont))
        families.prepend(textFont);
    if (!families.contains(emojiFamily()))
        families.append(emojiFamily());
    base.setFamilies(families);
    return base;
}

QFont heavy(int pixelSize) {
    QFont font = QGuiApplication::font();
    font.setPixelSize(pixelSize);
    font.setWeight(QFont::Black);
    const QString rounded = roundedFamily();
    if (rounded.isEmpty())
        return font;
    QStringList families = font.families();
    families.prepend(rounded);
    font.setFamilies(families);
    // Otherwise the outlines of neighbouring letters touch.
    font.setLetterSpacing(QFont::AbsoluteSpacing, outline(rounded, pixelSize) / 2);
    return font;
}

QFont emoji(int pixelSize) {
    QFont font(emojiFamily());
    font.setPixelSize(pixelSize);
    return font;
}

double outline(const QString& family, double pixelSize) {
    return family == roundedFont ? outlineOfAnEm * pixelSize : 0;
}

} // namespace quorvane::Fonts
