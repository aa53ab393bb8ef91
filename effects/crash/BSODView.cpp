#include "effects/crash/BSODView.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace quorvane {

namespace {

constexpr Color white(double opacity) {
    return {.red = 1, .green = 1, .blue = 1, .alpha = opacity};
}

using Weight = TextStyle::Weight;

constexpr TextStyle faceStyle{.size = 120, .weight = Weight::Light, .color = white(1)};
constexpr TextStyle sentenceStyle{.size = 24, .weight = Weight::Bold, .color = white(1)};
constexpr TextStyle hintStyle{.size = 16, .weight = Weight::Regular, .color = white(0.8)};
constexpr TextStyle percentStyle{.size = 16, .weight = Weight::Bold, .color = white(1)};
constexpr TextStyle completeStyle{.size = 14, .weight = Weight::Regular, .color = white(0.8)};
constexpr TextStyle codeStyle{.size = 14, .weight = Weight::Regular, .color = white(0.6)};

constexpr std::string_view face = ":(";
constexpr std::string_view sentence =
    "Your Mac ran into a problem that it couldn't handle, and now it needs to restart.";
constexpr std::string_view hintText =
    "If you'd like to know more, you can search online later for this error:\n";
constexpr std::string_view longestComplete = "Complete: 100%";

// Points.
constexpr double horizontalPadding = 100;
constexpr double verticalPadding = 80;
constexpr double faceGap = 24;
constexpr double sentenceGap = 32;
constexpr double hintGap = 40;
constexpr double widestSentence = 700;
constexpr double ringSize = 70;
constexpr double ringLine = 3;
constexpr double ringOpacity = 0.25;
constexpr double rowSpacing = 32;
constexpr double lineSpacing = 4;

std::string percentText(int percent) {
    return std::to_string(percent) + "%";
}

} // namespace

struct BSODView::Layout {
    double width = 0;
    double sentenceWidth = 0;
    double sentenceY = 0;
    double hintY = 0;
    double ringX = 0;
    double ringY = 0;
    double linesX = 0;
    double linesWidth = 0;
    double completeY = 0;
    double codeY = 0;

    [[nodiscard]] double ringCenterX() const { return ringX + ringSize / 2; }

    [[nodiscard]] double ringCenterY() const { return ringY + ringSize / 2; }
};

BSODView::Layout BSODView::layOut(Canvas& canvas, Size size) const {
    Layout layout;
    layout.width = std::max(size.width - 2 * horizontalPadding, 0.0);
    layout.sentenceWidth = std::min(layout.width, widestSentence);
    layout.sentenceY =
        verticalPadding + canvas.measure(face, faceStyle, layout.width).height + faceGap;
    layout.hintY = layout.sentenceY +
                   canvas.measure(sentence, sentenceStyle, layout.sentenceWidth).height +
                   sentenceGap;
    const double rowY =
        layout.hintY + canvas.measure(hint(), hintStyle, layout.width).height + hintGap;
    layout.linesX = horizontalPadding + ringSize + rowSpacing;
    layout.linesWidth = std::max(layout.width - ringSize - rowSpacing, 0.0);
    const double completeHeight =
        canvas.measure(longestComplete, completeStyle, layout.linesWidth).height;
    const double codeHeight =
        canvas.measure(m_screen->errorCode.get(), codeStyle, layout.linesWidth).height;
    const double linesHeight = completeHeight + lineSpacing + codeHeight;
    const double rowHeight = std::max(ringSize, linesHeight);
    layout.ringX = horizontalPadding;
    layout.ringY = rowY + (rowHeight - ringSize) / 2;
    layout.completeY = rowY + (rowHeight - linesHeight) / 2;
    layout.codeY = layout.completeY + completeHeight + lineSpacing;
    return layout;
}

void BSODView::draw(Canvas& canvas, Size size) const {
    const Layout layout = layOut(canvas, size);
    canvas.drawText(face, faceStyle, horizontalPadding, verticalPadding, layout.width);
    canvas.drawText(sentence, sentenceStyle, horizontalPadding, layout.sentenceY,
                    layout.sentenceWidth);
    canvas.drawText(hint(), hintStyle, horizontalPadding, layout.hintY, layout.width);
    drawRing(canvas, layout);
    canvas.drawText("Complete: " + percentText(percent()), completeStyle, layout.linesX,
                    layout.completeY, layout.linesWidth);
    canvas.drawText(m_screen->errorCode.get(), codeStyle, layout.linesX, layout.codeY,
                    layout.linesWidth);
}

void BSODView::drawRing(Canvas& canvas, const Layout& layout) const {
    for (const auto& [fraction, opacity] :
         {std::pair(1.0, ringOpacity), std::pair(m_screen->progress.get(), 1.0)})
        canvas.strokeArc(layout.ringCenterX(), layout.ringCenterY(), ringSize / 2, ringLine,
                         fraction, white(opacity));
    const std::string text = percentText(percent());
    const Size room = canvas.measure(text, percentStyle, ringSize);
    canvas.drawText(text, percentStyle, layout.ringCenterX() - room.width / 2,
                    layout.ringCenterY() - room.height / 2, ringSize);
}

Subscription BSODView::observeChanges(const std::function<void()>& changed) const {
    const auto all = std::make_shared<std::vector<Subscription>>();
    all->push_back(m_screen->errorMessage.observe(changed));
    all->push_back(m_screen->errorCode.observe(changed));
    all->push_back(m_screen->progress.observe(changed));
    return Subscription([all] { all->clear(); });
}

std::string BSODView::hint() const {
    return std::string(hintText) + m_screen->errorMessage.get();
}

int BSODView::percent() const {
    // Truncated, so that 100 % is shown only when complete.
    return static_cast<int>(m_screen->progress * 100);
}

} // namespace quorvane
