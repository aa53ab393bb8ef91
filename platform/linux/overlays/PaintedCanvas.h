#pragma once

#include <QPainter>
#include <QTextLayout>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/Canvas.h"

namespace quorvane {

/// Texts that have been laid out, so that one that is drawn again is not shaped again.
class LaidOutTexts {
public:
    struct Text {
        QTextLayout layout;
        Size room;
    };

    const Text& get(std::string_view text, const TextStyle& style, double width);

private:
    [[nodiscard]] const QFont& font(const TextStyle& style);

    std::unordered_map<std::string, std::unique_ptr<Text>> m_texts;
    // Few, and dear to make.
    std::vector<std::pair<TextStyle, QFont>> m_fonts;
};

/// Draws with a painter whose unit is a point. The texts are kept for other canvases.
class PaintedCanvas final : public Canvas {
public:
    PaintedCanvas(QPainter& painter, LaidOutTexts& texts);

    [[nodiscard]] Size measure(std::string_view text, const TextStyle& style,
                               double width) override;
    void drawText(std::string_view text, const TextStyle& style, double x, double y,
                  double width) override;
    void fill(const Rect& rect, const Color& color) override;
    void strokeArc(double centerX, double centerY, double radius, double lineWidth, double fraction,
                   const Color& color) override;
    /// The arc from `from` to `to`, fractions of the circle from its top.
    void strokeArc(double centerX, double centerY, double radius, double lineWidth, double from,
                   double to, const Color& color);

private:
    QPainter& m_painter;
    LaidOutTexts& m_texts;
};

/// The same colour for the toolkit.
[[nodiscard]] QColor toolkitColor(const Color& color);

/// How many pictures a spinner's turn is made of.
inline constexpr int spinnerSteps = 12;

/// Where a spinner draws.
[[nodiscard]] Rect spinnerBounds(const Spinner& spinner);

/// Draws a spinner's picture `step`, counted from any: strokes around a circle, the one
/// at the step in full and those behind it fading.
void drawSpinner(QPainter& painter, const Spinner& spinner, int step);

} // namespace quorvane
