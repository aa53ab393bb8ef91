#pragma once

#include "tests/app/screens/ScreensFixture.h"

#include <QFont>
#include <QQuickItem>

#include <algorithm>
#include <cstdlib>
#include <ostream>
#include <string>

namespace quorvane {

// The look of a text, whichever QML type draws it.
struct Look {
    int size;
    int weight = QFont::Normal;
    QColor color = Qt::white;
    double opacity = 1;

    bool operator==(const Look&) const = default;
};

inline void PrintTo(const Look& look, std::ostream* out) {
    *out << look.size << " px, weight " << look.weight << ", " << look.color.name().toStdString()
         << " at " << look.opacity;
}

inline QQuickItem* findText(QQuickItem* from, const QString& text) {
    const bool isText = from->property("font").isValid() || from->property("pixelSize").isValid();
    if (isText && from->property("text").toString() == text)
        return from;
    for (QQuickItem* child : from->childItems())
        if (QQuickItem* found = findText(child, text))
            return found;
    return nullptr;
}

// Sizes, weights, colours and places.
class LayoutTest : public ScreensTest {
protected:
    LayoutTest() {
        withAllEffects();
        withoutParticles();
    }

    QQuickItem* text(const std::string& words) {
        return findText(m_window->window().rootObject(), QString::fromStdString(words));
    }

    // Of the text itself, not of the control that has it as its name.
    QRectF placeOfText(const std::string& words) {
        const QQuickItem* item = text(words);
        EXPECT_TRUE(item) << "there is no " << words;
        return item ? item->mapRectToScene(QRectF({}, item->size())) : QRectF();
    }

    Look lookOf(const std::string& words) {
        const QQuickItem* item = text(words);
        if (!item)
            return {.size = 0};
        if (const QVariant size = item->property("pixelSize"); size.isValid())
            return {.size = size.toInt(),
                    .weight = QFont::Black,
                    .color = item->property("colors").value<QList<QColor>>().value(0),
                    .opacity = item->opacity()};
        const auto font = item->property("font").value<QFont>();
        const auto color = item->property("color").value<QColor>();
        return {.size = font.pixelSize(),
                .weight = font.weight(),
                .color = QColor(color.rgb()),
                .opacity = item->opacity() * qRound(color.alphaF() * 100) / 100};
    }

    static QColor over(const QColor& below, const QColor& above, double opacity) {
        const auto mix = [&](int a, int b) { return qRound(a + (b - a) * opacity); };
        return {mix(below.red(), above.red()), mix(below.green(), above.green()),
                mix(below.blue(), above.blue())};
    }

    QColor at(const QPointF& place) { return colorAt(qRound(place.x()), qRound(place.y())); }

    int brightestIn(const QRectF& place) {
        const QImage picture = picture1x();
        int brightest = 0;
        for (int y = qRound(place.top()); y < place.bottom(); ++y)
            for (int x = qRound(place.left()); x < place.right(); ++x)
                brightest = std::max(brightest, picture.pixelColor(x, y).lightness());
        return brightest;
    }

    // How many of the window's points within `place` are near `color`.
    int countOf(const QColor& color, const QRectF& place, int tolerance = 12) {
        const QImage picture = picture1x();
        const QRect points = place.toAlignedRect().intersected(picture.rect());
        int count = 0;
        for (int y = points.top(); y <= points.bottom(); ++y)
            for (int x = points.left(); x <= points.right(); ++x) {
                const QColor seen = picture.pixelColor(x, y);
                count += std::abs(seen.red() - color.red()) <= tolerance &&
                                 std::abs(seen.green() - color.green()) <= tolerance &&
                                 std::abs(seen.blue() - color.blue()) <= tolerance
                             ? 1
                             : 0;
            }
        return count;
    }

    // The fill of a big button, beside its label.
    QColor fillOf(const std::string& button) {
        const QRectF place = placeOf(button);
        return at({place.left() + 40, place.center().y()});
    }

    QColor besideOf(const std::string& button) {
        const QRectF place = placeOf(button);
        return at({place.left() - 10, place.center().y()});
    }
};

} // namespace quorvane
