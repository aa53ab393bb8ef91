#pragma once

#include <string_view>

#include "base/NonCopyable.h"

namespace quorvane {

/// Points; y grows downward.
struct Size {
    double width = 0;
    double height = 0;

    bool operator==(const Size&) const = default;
};

struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    bool operator==(const Rect&) const = default;
};

/// sRGB, each 0 to 1, alpha not multiplied in.
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
    double centerX = 0;
    double centerY = 0;
    /// Times the platform's own size.
    double scale = 1;
    Color tint;
};

/// Where views draw, in points from the top left corner. Main thread only.
class Canvas : NonCopyable {
public:
    virtual ~Canvas() = default;

    /// The room that a text takes, wrapped at words to at most `width` points (a word that is wider
    /// is wrapped within); line ends in the text are kept.
    [[nodiscard]] virtual Size measure(std::string_view text, const TextStyle& style,
                                       double width) = 0;
    /// Draws a text from the top left of its room, wrapped as it is measured.
    virtual void drawText(std::string_view text, const TextStyle& style, double x, double y,
                          double width) = 0;
    virtual void fill(const Rect& rect, const Color& color) = 0;
    /// Strokes a circle's arc from its top, clockwise, over `fraction` (0 to 1) of the circle. Butt
    /// ends; the line is centred on the radius.
    virtual void strokeArc(double centerX, double centerY, double radius, double lineWidth,
                           double fraction, const Color& color) = 0;
};

} // namespace quorvane
