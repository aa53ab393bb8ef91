#include "effects/crash/FreezeView.h"

#include <string_view>

namespace quorvane {

namespace {

constexpr Color veil{.red = 1, .green = 1, .blue = 1, .alpha = 0.55};

// The system's grey: 142, 142, 147 of 255.
constexpr Color grey(double opacity) {
    return {.red = 142.0 / 255, .green = 142.0 / 255, .blue = 147.0 / 255, .alpha = opacity};
}

constexpr TextStyle textStyle{.size = 22, .weight = TextStyle::Weight::Medium, .color = grey(0.8)};
constexpr std::string_view text = "(Not Responding)";

// Points. The layout uses the spinner's unscaled size.
constexpr double spinnerScale = 3;
constexpr double spacing = 20;
constexpr double textPadding = 20;

struct Layout {
    double spinnerCenterY = 0;
    double textX = 0;
    double textY = 0;
};

Layout layOut(Canvas& canvas, Size size) {
    const Size room = canvas.measure(text, textStyle, size.width);
    const double height = Spinner::size + spacing + textPadding + room.height;
    const double top = (size.height - height) / 2;
    return {.spinnerCenterY = top + Spinner::size / 2,
            .textX = (size.width - room.width) / 2,
            .textY = top + Spinner::size + spacing + textPadding};
}

} // namespace

void FreezeView::drawStill(Canvas& canvas, Size size) const {
    canvas.fill({.x = 0, .y = 0, .width = size.width, .height = size.height}, veil);
    const Layout layout = layOut(canvas, size);
    canvas.drawText(text, textStyle, layout.textX, layout.textY, size.width);
}

void FreezeView::drawChanging(Canvas& /*canvas*/, Size /*size*/) const {}

Rect FreezeView::changingBounds(Canvas& /*canvas*/, Size /*size*/) const {
    return {};
}

Subscription FreezeView::observeChanges(std::function<void()> /*changed*/) const {
    return {};
}

std::optional<Spinner> FreezeView::spinner(Canvas& canvas, Size size) const {
    return Spinner{.centerX = size.width / 2,
                   .centerY = layOut(canvas, size).spinnerCenterY,
                   .scale = spinnerScale,
                   .tint = grey(1)};
}

} // namespace quorvane
