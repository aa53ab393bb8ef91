#include "app/screens/Fonts.h"

#include <QFontDatabase>
#include <QGuiApplication>

#ifdef QUORVANE_MACOS
#include "platform/macos/MacSymbols.h"
#endif

namespace quorvane::Fonts {

namespace {

constexpr auto textFont = "Inter";
#ifdef QUORVANE_MACOS
constexpr auto emojiFont = "Apple Color Emoji";
#else
constexpr auto emojiFont = "Noto Color Emoji";
#endif

// The distribution has no rounded face that is heavier than bold. An outline with round joins makes
// up for the rest, and makes it rounder still.
constexpr auto roundedFont = "Quicksand";
constexpr double outlineOfAnEm = 0.062;

// The rounded face that there is; empty without any.
QString roundedFamily() {
#ifdef QUORVANE_MACOS
    // The system has its own in every weight, and keeps it out of the list of families.
    static const QString family = QString::fromStdString(roundedSystemFontFamily());
    return family;
#else
    return QFontDatabase::hasFamily(roundedFont) ? QString(roundedFont) : QString();
#endif
}

} // namespace

// The emoji font comes last, for the emoji within a text. A font that is not there must not be
// named: all letters would come from the next one in the list.
QFont text(QFont base) {
    QStringList families = base.families();
    if (QFontDatabase::hasFamily(textFont) && !families.contains(textFont))
        families.prepend(textFont);
    if (!families.contains(emojiFont))
        families.append(emojiFont);
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
    // The outlines of neighbours must not touch.
    font.setLetterSpacing(QFont::AbsoluteSpacing, outline(rounded, pixelSize) / 2);
    return font;
}

QFont emoji(int pixelSize) {
    QFont font(emojiFont);
    font.setPixelSize(pixelSize);
    return font;
}

double outline(const QString& family, double pixelSize) {
    return family == roundedFont ? outlineOfAnEm * pixelSize : 0;
}

} // namespace quorvane::Fonts
