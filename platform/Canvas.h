#pragma once

#include <string_view>

#include "base/NonCopyable.h"

namespace quorvane {

/// In points.
struct Size {
    double width = 0;
    double height = 0;

    bool operator==(const Size&) const = default;
};

/// In points, from the top left corner; y grows downward.
struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    bool operator==(const Rect&) const = default;
};

/// sRGB, 0 to 1 each, alpha not premultiplied.
struct Color {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;

    bool operator==(const Color&) const = default;
};

/// The system font at a size in points.
struct TextStyle {
    enum class Weight { Light, Regular, Medium, Bold };

    double size = 0;
    Weight weight = Weight::Regular;
    Color color;

    bool operator==(const TextStyle&) const = default;
};

/// An indeterminate circular progress indicator.
struct Spinner {
    /// The platform's own size, in points: that of the macOS progress indicator.
    static constexpr double size = 32;

    double centerX = 0;
    double centerY = 0;
    /// Factor on `size`.
    double scale = 1;
    Color tint;

    /// The square that it is drawn in.
    [[nodiscard]] Rect bounds() const {
        return {.x = centerX - size * scale / 2,
                .y = centerY - size * scale / 2,
                .width = size * scale,
                .height = size * scale};
    }

    bool operator==(const Spinner&) const = default;
};

/// The surface that views draw on, in points from the top left corner. Main thread only.
class Canvas : NonCopyable {
public:
    virtual ~Canvas() = default;

    /// The size of `text` wrapped to at most `width` points, between words, or within a word that
    /// is wider. Line breaks in the text are kept.
    [[nodiscard]] virtual Size measure(std::string_view text, const TextStyle& style,
                                       double width) = 0;
    /// Draws a text with its top left corner at `x`, `y`, wrapped as by `measure`.
    virtual void drawText(std::string_view text, const TextStyle& style, double x, double y,
                          double width) = 0;
    /// Strokes `fraction` (0 to 1) of a circle, clockwise from its top, with butt caps; the line is
    /// centred on the radius.
    virtual void strokeArc(double centerX, double centerY, double radius, double lineWidth,
                           double fraction, const Color& color) = 0;
    /// Draws a spinner, which the platform animates while the panel is shown.
    virtual void drawSpinner(const Spinner& spinner) = 0;
};

} // namespace quorvane
