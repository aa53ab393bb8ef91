#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "effects/crash/StopScreen.h"
#include "platform/Screens.h"

namespace quorvane {

/// The page of a stop screen: a sad face, a sentence, the stop code's name, a ring of progress and
/// the stop code, hanging from the screen's top left corner. It cannot be dismissed.
class BSODView final : public OverlayView {
public:
    static constexpr Color background{.red = 0.0, .green = 0.47, .blue = 0.83, .alpha = 1.0};

    explicit BSODView(std::shared_ptr<const StopScreen> screen) : m_screen(std::move(screen)) {}

    void drawStill(Canvas& canvas, Size size) const override;
    void drawChanging(Canvas& canvas, Size size) const override;
    [[nodiscard]] Rect changingBounds(Canvas& canvas, Size size) const override;
    [[nodiscard]] Subscription observeChanges(std::function<void()> changed) const override;
    [[nodiscard]] std::optional<Spinner> spinner(Canvas& canvas, Size size) const override;

private:
    struct Layout;

    [[nodiscard]] Layout layOut(Canvas& canvas, Size size) const;
    [[nodiscard]] std::string hint() const;
    [[nodiscard]] int percent() const;

    std::shared_ptr<const StopScreen> m_screen;
};

} // namespace quorvane
