#pragma once

#include <functional>
#include <memory>
#include <string>

#include "base/Observable.h"
#include "platform/Screens.h"

namespace quorvane {

/// The content of a stop screen. Main thread only.
struct StopScreen {
    /// The stop code's name, such as "CRITICAL_PROCESS_DIED".
    Observable<std::string> errorMessage;
    /// The stop code in hexadecimal, such as "0x000000EF".
    Observable<std::string> errorCode;
    /// Completion from 0 to 1.
    Observable<double> progress;
};

/// Draws a stop screen: a sad face, a sentence, the stop code's name, a progress ring and the stop
/// code, aligned to the screen's top left corner. It cannot be dismissed.
class BSODView final : public OverlayView {
public:
    static constexpr Color background{.red = 0.0, .green = 0.47, .blue = 0.83, .alpha = 1.0};

    explicit BSODView(std::shared_ptr<const StopScreen> screen) : m_screen(std::move(screen)) {}

    [[nodiscard]] Color backLayer() const override { return background; }

    void draw(Canvas& canvas, Size size) const override;
    [[nodiscard]] Subscription observeChanges(const std::function<void()>& changed) const override;

private:
    struct Layout;

    [[nodiscard]] Layout layOut(Canvas& canvas, Size size) const;
    void drawRing(Canvas& canvas, const Layout& layout) const;
    [[nodiscard]] std::string hint() const;
    [[nodiscard]] int percent() const;

    std::shared_ptr<const StopScreen> m_screen;
};

} // namespace quorvane
