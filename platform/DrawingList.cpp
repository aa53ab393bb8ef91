#include "platform/DrawingList.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace quorvane {

namespace {

// Points by which anti-aliasing reaches beyond a stroke, and letters beyond their line.
constexpr double smoothing = 1;
constexpr double overhang = 2;

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
    return m_canvas.measure(text, style, width);
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

void DrawingList::strokeArc(double centerX, double centerY, double radius, double lineWidth,
                            double fraction, const Color& color) {
    // In whole pixels of the circle: a smaller step could hardly be seen.
    const double length = 2 * std::numbers::pi * radius * m_scale;
    const double drawn = std::floor(std::clamp(fraction, 0.0, 1.0) * length) / length;
    m_items.emplace_back(Arc{.centerX = centerX,
                             .centerY = centerY,
                             .radius = radius,
                             .lineWidth = lineWidth,
                             .fraction = fraction >= 1 ? 1 : drawn,
                             .color = color});
}

std::vector<Rect> DrawingList::areas() const {
    std::vector<Rect> all;
    for (const Item& item : m_items)
        all.push_back(areaOf(item));
    if (m_spinner)
        all.push_back(m_spinner->bounds());
    return all;
}

std::vector<Rect> DrawingList::changes(const DrawingList& before) const {
    std::vector<Rect> all;
    const std::size_t both = std::min(m_items.size(), before.m_items.size());
    for (std::size_t i = 0; i < both; ++i)
        if (m_items[i] != before.m_items[i])
            all.push_back(change(m_items[i], before.m_items[i]));
    for (const auto* items : {&m_items, &before.m_items})
        for (std::size_t i = both; i < items->size(); ++i)
            all.push_back(areaOf((*items)[i]));
    return all;
}

void DrawingList::draw(Canvas& canvas, const Rect& area) const {
    for (const Item& item : m_items)
        if (touches(areaOf(item), area))
            std::visit([&canvas](const auto& each) { each.draw(canvas); }, item);
    if (m_spinner && touches(m_spinner->bounds(), area))
        canvas.drawSpinner(*m_spinner);
}

Rect DrawingList::areaOf(const Item& item) {
    return std::visit([](const auto& each) { return each.area(); }, item);
}

Rect DrawingList::change(const Item& item, const Item& before) {
    const auto* arc = std::get_if<Arc>(&item);
    const auto* arcBefore = std::get_if<Arc>(&before);
    const auto growth = arc && arcBefore ? arc->growth(*arcBefore) : std::nullopt;
    return growth.value_or(united(areaOf(item), areaOf(before)));
}

Rect DrawingList::Text::area() const {
    return {.x = x - overhang,
            .y = y - overhang,
            .width = room.width + 2 * overhang,
            .height = room.height + 2 * overhang};
}

void DrawingList::Text::draw(Canvas& canvas) const {
    canvas.drawText(text, style, x, y, width);
}

/// The area of the stroke between two fractions of the circle.
Rect DrawingList::Arc::area(double from, double to) const {
    const double reach = lineWidth / 2 + smoothing;
    const auto around = [this, reach](double fractionOfCircle) {
        const double angle = 2 * std::numbers::pi * fractionOfCircle;
        return Rect{.x = centerX + radius * std::sin(angle) - reach,
                    .y = centerY - radius * std::cos(angle) - reach,
                    .width = 2 * reach,
                    .height = 2 * reach};
    };
    Rect all = united(around(from), around(to));
    for (const double side : {0.25, 0.5, 0.75})
        if (from < side && side < to)
            all = united(all, around(side));
    return all;
}

/// Where it differs from an arc of the same circle.
std::optional<Rect> DrawingList::Arc::growth(const Arc& before) const {
    Arc same = before;
    same.fraction = fraction;
    if (*this != same)
        return std::nullopt;
    return area(std::min(fraction, before.fraction), std::max(fraction, before.fraction));
}

void DrawingList::Arc::draw(Canvas& canvas) const {
    canvas.strokeArc(centerX, centerY, radius, lineWidth, fraction, color);
}

} // namespace quorvane
