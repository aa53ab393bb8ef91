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

} // namespace

Color FreezeView::backLayer() const {
    return veil;
}

void FreezeView::draw(Canvas& canvas, Size size) const {
    const Size room = canvas.measure(text, textStyle, size.width);
    const double height = Spinner::size + spacing + textPadding + room.height;
    const double top = (size.height - height) / 2;
    canvas.drawSpinner({.centerX = size.width / 2,
                        .centerY = top + Spinner::size / 2,
                        .scale = spinnerScale,
                        .tint = grey(1)});
    canvas.drawText(text, textStyle, (size.width - room.width) / 2,
                    top + Spinner::size + spacing + textPadding, size.width);
}

} // namespace quorvane
