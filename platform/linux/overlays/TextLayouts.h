#pragma once

#include <QTextLayout>
#include <list>

#include "platform/Canvas.h"

namespace quorvane {

/// Texts in the system font, laid out once and kept: shaping them is the largest cost of drawing
/// them. Main thread only.
class TextLayouts {
public:
    /// The room of a text wrapped at `width` points. A `QGuiApplication` has to exist.
    [[nodiscard]] Size measure(std::string_view text, const TextStyle& style, double width);
    /// Draws a text from its top left corner on; the painter's unit is a point.
    void draw(QPainter& painter, std::string_view text, const TextStyle& style, QPointF corner,
              double width);

private:
    struct Entry {
        std::string text;
        TextStyle style;
        double width = 0;
        QTextLayout layout;
        Size room;
    };

    Entry& find(std::string_view text, const TextStyle& style, double width);

    // The most recently used first.
    std::list<Entry> m_entries;
};

} // namespace quorvane
