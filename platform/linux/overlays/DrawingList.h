#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "platform/linux/overlays/PaintedCanvas.h"

namespace quorvane {

/// Notes what is drawn on it, to be compared with what was drawn before and painted only where they
/// differ. In points. Main thread only.
class DrawingList final : public Canvas {
public:
    /// `texts` outlive the list.
    explicit DrawingList(LaidOutTexts& texts) : m_texts(texts) {}

    [[nodiscard]] Size measure(std::string_view text, const TextStyle& style,
                               double width) override;
    void drawText(std::string_view text, const TextStyle& style, double x, double y,
                  double width) override;
    void fill(const Rect& rect, const Color& color) override;
    void strokeArc(double centerX, double centerY, double radius, double lineWidth, double fraction,
                   const Color& color) override;

    /// Forgets everything.
    void clear() { m_items.clear(); }

    /// Changes what they note with a list that has the same texts.
    void swap(DrawingList& other) { m_items.swap(other.m_items); }

    /// Where it looks otherwise than `before`; edges that are smoothed are within.
    [[nodiscard]] std::vector<Rect> differences(const DrawingList& before) const;
    /// Paints what reaches into `part`, and not all that lies outside.
    void paint(PaintedCanvas& canvas, const Rect& part) const;

private:
    struct Text {
        std::string text;
        TextStyle style;
        double x = 0;
        double y = 0;
        double width = 0;
        Size room;

        [[nodiscard]] Rect bounds() const;
        void paint(PaintedCanvas& canvas, const Rect& part) const;
        bool operator==(const Text&) const = default;
    };

    struct Fill {
        Rect rect;
        Color color;

        [[nodiscard]] Rect bounds() const { return rect; }

        void paint(PaintedCanvas& canvas, const Rect& part) const;
        bool operator==(const Fill&) const = default;
    };

    struct Arc {
        double centerX = 0;
        double centerY = 0;
        double radius = 0;
        double lineWidth = 0;
        double fraction = 0;
        Color color;

        [[nodiscard]] Rect bounds() const { return bounds(0, 1); }

        [[nodiscard]] Rect bounds(double from, double to) const;
        /// Where it differs from an arc of the same circle.
        [[nodiscard]] std::optional<Rect> growth(const Arc& before) const;
        void paint(PaintedCanvas& canvas, const Rect& part) const;
        bool operator==(const Arc&) const = default;

    private:
        [[nodiscard]] Rect around(double fractionOfCircle) const;
    };

    using Item = std::variant<Text, Fill, Arc>;

    static Rect bounds(const Item& item);
    static void compare(const Item& item, const Item& before, std::vector<Rect>& different);

    LaidOutTexts& m_texts;
    std::vector<Item> m_items;
};

} // namespace quorvane
