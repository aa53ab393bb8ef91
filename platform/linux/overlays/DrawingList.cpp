#include "platform/linux/overlays/DrawingList.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace quorvane {

namespace {

// What smoothing adds to a stroke's edge, and letters may reach out of their room.
constexpr double smoothing = 1;
constexpr double overhang = 2;
// Points of a circle that are looked at, each a few points of the ring from the next.
constexpr int steps = 64;

Rect united(const Rect& one, const Rect& other) {
    const double left = std::min(one.x, other.x);
    const double top = std::min(one.y, other.y);
    return {.x = left,
            .y = top,
            .width = std::max(one.x + one.width, other.x + other.width) - left,
            .height = std::max(one.y + one.height, other.y + other.height) - top};
}

bool touches(const Rect& one, const Rect& other) {
    return one.x <= other.x + other.width && other.x <= one.x + one.width &&
           one.y <= other.y + other.height && other.y <= one.y + one.height;
}

} // namespace

Size DrawingList::measure(std::string_view text, const TextStyle& style, double width) {
    return m_texts.get(text, style, width).room;
}

void DrawingList::drawText(std::string_view text, const TextStyle& style, double x, double y,
                           double width) {
    m_items.emplace_back(Text{.text = std::string(text),
                              .style = style,
                              .x = x,
                              .y = y,
                              .width = width,
                              .room = measure(text, style, width)});
}

void DrawingList::fill(const Rect& rect, const Color& color) {
    m_items.emplace_back(Fill{.rect = rect, .color = color});
}

void DrawingList::strokeArc(double centerX, double centerY, double radius, double lineWidth,
                            double fraction, const Color& color) {
    m_items.emplace_back(Arc{.centerX = centerX,
                             .centerY = centerY,
                             .radius = radius,
                             .lineWidth = lineWidth,
                             .fraction = std::clamp(fraction, 0.0, 1.0),
                             .color = color});
}

std::vector<Rect> DrawingList::differences(const DrawingList& before) const {
    std::vector<Rect> different;
    const std::size_t both = std::min(m_items.size(), before.m_items.size());
    for (std::size_t i = 0; i < both; ++i)
        if (m_items[i] != before.m_items[i])
            compare(m_items[i], before.m_items[i], different);
    for (const auto* items : {&m_items, &before.m_items})
        for (std::size_t i = both; i < items->size(); ++i)
            different.push_back(bounds((*items)[i]));
    return different;
}

void DrawingList::paint(PaintedCanvas& canvas, const Rect& part) const {
    for (const Item& item : m_items)
        if (touches(bounds(item), part))
            std::visit([&](const auto& each) { each.paint(canvas, part); }, item);
}

Rect DrawingList::bounds(const Item& item) {
    return std::visit([](const auto& each) { return each.bounds(); }, item);
}

void DrawingList::compare(const Item& item, const Item& before, std::vector<Rect>& different) {
    const auto* arc = std::get_if<Arc>(&item);
    const auto* arcBefore = std::get_if<Arc>(&before);
    if (const auto growth = arc && arcBefore ? arc->growth(*arcBefore) : std::nullopt) {
        different.push_back(*growth);
        return;
    }
    different.push_back(bounds(item));
    different.push_back(bounds(before));
}

Rect DrawingList::Text::bounds() const {
    return {.x = x - overhang,
            .y = y - overhang,
            .width = room.width + 2 * overhang,
            .height = room.height + 2 * overhang};
}

void DrawingList::Text::paint(PaintedCanvas& canvas, const Rect& /*part*/) const {
    canvas.drawText(text, style, x, y, width);
}

void DrawingList::Fill::paint(PaintedCanvas& canvas, const Rect& /*part*/) const {
    canvas.fill(rect, color);
}

/// The stroke's thickness at one place of the circle.
Rect DrawingList::Arc::around(double fractionOfCircle) const {
    const double angle = 2 * std::numbers::pi * fractionOfCircle;
    const double reach = lineWidth / 2 + smoothing;
    return {.x = centerX + radius * std::sin(angle) - reach,
            .y = centerY - radius * std::cos(angle) - reach,
            .width = 2 * reach,
            .height = 2 * reach};
}

Rect DrawingList::Arc::bounds(double from, double to) const {
    Rect all = united(around(from), around(to));
    for (int quarter = 1; quarter < 4; ++quarter)
        if (const double side = quarter / 4.0; from < side && side < to)
            all = united(all, around(side));
    // A circle's top is its start and its end.
    return from <= 0 && to >= 1 ? united(all, around(0)) : all;
}

std::optional<Rect> DrawingList::Arc::growth(const Arc& before) const {
    Arc same = before;
    same.fraction = fraction;
    if (*this != same)
        return std::nullopt;
    return bounds(std::min(fraction, before.fraction), std::max(fraction, before.fraction));
}

// Only the stretch that can be seen: a stroke costs by its length. The ends that this makes are
// outside of the part.
void DrawingList::Arc::paint(PaintedCanvas& canvas, const Rect& part) const {
    std::optional<int> first;
    int last = 0;
    Rect ahead = around(0);
    for (int step = 0; step <= steps; ++step) {
        const Rect behind = std::exchange(ahead, around(static_cast<double>(step + 1) / steps));
        if (!touches(united(behind, ahead), part))
            continue;
        first = first.value_or(step);
        last = step + 1;
    }
    if (!first)
        return;
    const double from = std::max(*first - 1, 0) / static_cast<double>(steps);
    const double to = last >= steps ? 1 : static_cast<double>(last + 1) / steps;
    if (std::min(to, fraction) > from)
        canvas.strokeArc(centerX, centerY, radius, lineWidth, from, std::min(to, fraction), color);
}

} // namespace quorvane
