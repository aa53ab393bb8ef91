#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/Screens.h"
#include "platform/simulated/Faults.h"

namespace quorvane {

/// A canvas that records what is drawn. A letter (byte) is 0.5 times the text's size wide, a line
/// 1.2 times the text's size high.
class SimulatedCanvas final : public Canvas {
public:
    struct Text {
        std::string text;
        TextStyle style;
        Rect room;
    };

    struct Arc {
        double centerX = 0;
        double centerY = 0;
        double radius = 0;
        double lineWidth = 0;
        double fraction = 0;
        Color color;
    };

    [[nodiscard]] Size measure(std::string_view text, const TextStyle& style,
                               double width) override;
    void drawText(std::string_view text, const TextStyle& style, double x, double y,
                  double width) override;
    void strokeArc(double centerX, double centerY, double radius, double lineWidth, double fraction,
                   const Color& color) override;

    void drawSpinner(const Spinner& spinner) override { spinners.push_back(spinner); }

    /// The text that starts with `start`; ends the program if there is none.
    [[nodiscard]] const Text& textStarting(std::string_view start) const;

    std::vector<Text> texts;
    std::vector<Arc> arcs;
    std::vector<Spinner> spinners;
};

/// A record of one panel.
struct SimulatedPanel {
    /// In order: "create 0,0 1440x900 style 128 backing 2 defer no", "level 1000", "opaque yes",
    /// "background 0,0.47,0.83,1", "behavior 257", "ignores mouse no", "content view",
    /// "frame 0,0 1440x900 display yes", "front", "out".
    std::vector<std::string> calls;
    std::shared_ptr<const OverlayView> view;
    Rect frame;
    double timeLimit = 0;
    bool shown = false;
};

/// The screens of a simulated machine and the panels over them.
class SimulatedScreens final : public ScreenService {
public:
    explicit SimulatedScreens(std::shared_ptr<Faults> faults = std::make_shared<Faults>());
    ~SimulatedScreens() override;

    [[nodiscard]] std::shared_ptr<Screen> mainScreen() override;

    [[nodiscard]] std::string obstacle() override { return m_obstacle; }

    [[nodiscard]] std::shared_ptr<OverlayPanel>
    createPanel(const Rect& contentRect, unsigned styleMask, unsigned backing, bool defer) override;

    /// The main screen's frame from now on; none: no screen.
    void setMainScreen(std::optional<Rect> frame);

    /// What `obstacle` returns; empty at first.
    void setObstacle(std::string obstacle) { m_obstacle = std::move(obstacle); }

    /// All panels, in the order of creation.
    [[nodiscard]] const std::vector<std::shared_ptr<SimulatedPanel>>& panels() const {
        return m_panels;
    }

    /// Forgets the panels that are hidden.
    void forgetHiddenPanels();

    /// `observer` is called after each panel's `orderFrontRegardless` and `orderOut`.
    void onPanelMoved(std::function<void(const SimulatedPanel& panel)> observer);

    /// The panels that are shown, the frontmost last.
    [[nodiscard]] std::vector<std::shared_ptr<SimulatedPanel>> shownPanels() const;

private:
    class Panel;

    /// Shared with the panels, which may outlive the service.
    struct State {
        std::shared_ptr<Faults> faults;
        /// In stacking order.
        std::vector<std::shared_ptr<SimulatedPanel>> shown;
        std::function<void(const SimulatedPanel& panel)> moved;
    };

    std::shared_ptr<std::optional<Rect>> m_mainFrame;
    std::string m_obstacle;
    std::vector<std::shared_ptr<SimulatedPanel>> m_panels;
    std::shared_ptr<State> m_state = std::make_shared<State>();
};

} // namespace quorvane
