#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "platform/Canvas.h"

namespace quorvane {

/// A list of what a view draws. Two lists of one view tell what has to be drawn again after a
/// change. Main thread only.
class DrawingList final : public Canvas {
public:
    /// Measures with `canvas`, which must outlive the list. `scale`: pixels per point.
    DrawingList(Canvas& canvas, double scale) : m_canvas(canvas), m_scale(scale) {}

    [[nodiscard]] Size measure(std::string_view text, const TextStyle& style,
                               double width) override;
    void drawText(std::string_view text, const TextStyle& style, double x, double y,
                  double width) override;
    void strokeArc(double centerX, double centerY, double radius, double lineWidth, double fraction,
                   const Color& color) override;

    void drawSpinner(const Spinner& spinner) override { m_spinner = spinner; }

    /// Of the whole drawing there is at most one.
    [[nodiscard]] const std::optional<Spinner>& spinner() const { return m_spinner; }

    /// The area of each thing that is drawn, anti-aliased edges included.
    [[nodiscard]] std::vector<Rect> areas() const;
    /// The areas that look different from `before`, a list of the same view and size. A spinner's
    /// turning is no change.
    [[nodiscard]] std::vector<Rect> changes(const DrawingList& before) const;
    /// Draws all things of which a part is within `area`.
    void draw(Canvas& canvas, const Rect& area) const;

private:
    struct Text {
        std::string text;
        TextStyle style;
        double x = 0;
        double y = 0;
        double width = 0;
        Size room;

        [[nodiscard]] Rect area() const;
        void draw(Canvas& canvas) const;
        bool operator==(const Text&) const = default;
    };

    struct Arc {
        double centerX = 0;
        double centerY = 0;
        double radius = 0;
        double lineWidth = 0;
        double fraction = 0;
        Color color;

        [[nodiscard]] Rect area() const { return area(0, 1); }

        [[nodiscard]] Rect area(double from, double to) const;
        [[nodiscard]] std::optional<Rect> growth(const Arc& before) const;
        void draw(Canvas& canvas) const;
        bool operator==(const Arc&) const = default;
    };

    using Item = std::variant<Text, Arc>;

    [[nodiscard]] static Rect areaOf(const Item& item);
    [[nodiscard]] static Rect change(const Item& item, const Item& before);

    Canvas& m_canvas;
    double m_scale;
    std::vector<Item> m_items;
    std::optional<Spinner> m_spinner;
};

} // namespace quorvane
