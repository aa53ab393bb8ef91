#pragma once

#include <QAccessible>
#include <QColor>
#include <QImage>
#include <QString>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "app/ContentView.h"
#include "app/screens/MainWindow.h"
#include "platform/simulated/SimulatedDesktop.h"
#include "platform/simulated/SimulatedMachine.h"
#include "tests/app/screens/AnimationClock.h"
#include "tests/support/FakeEffects.h"

namespace quorvane {

/// The real window over the real controller on a simulated machine, read and operated through its
/// accessibility tree. The machine's time is virtual, and so is that of the window's animations.
class ScreensTest : public testing::Test {
public:
    ~ScreensTest() override;

protected:
    // The names of the big buttons.
    static constexpr auto check = "CHECK HARDWARE 🔍";
    static constexpr auto enter = "MAKE ME SUFFER 😭";
    static constexpr auto stop = "STOP, I'M SUFFERING 😭";

    ScreensTest();

    /// Gives the next window every effect's row.
    void withAllEffects();
    /// The next launch begins on the warning screen.
    void withHardwareChecked();

    /// Makes the window and does not show it.
    void makeWindow();
    /// Makes and shows the window and waits until it has appeared. Its sign is about to pop up.
    void appear();
    /// Makes and shows the window and waits until it is at rest.
    void launch();
    /// Launches on the warning screen.
    void launchChecked();
    /// Launches and goes on to the control panel.
    void launchIntoControlPanel();
    /// Runs the hardware check until its results are there.
    void runCheck();
    /// Opens the info popup of the row `label`.
    void openInfo(const std::string& label);

    /// Handles events until `condition` holds; fails the test after ten seconds.
    static void waitUntil(const std::function<bool()>& condition, const char* what);
    /// Handles all events and draws every frame that is asked for. No animation moves.
    void draw();
    /// Lets `milliseconds` of the animations' time pass, and draws.
    void animate(int milliseconds);
    /// Runs all animations that have an end to it, and draws.
    void settle();

    /// The names of the visible elements, in reading order.
    [[nodiscard]] std::vector<std::string> names(QAccessible::Role role);
    [[nodiscard]] std::vector<std::string> texts();
    [[nodiscard]] std::vector<std::string> buttons();
    [[nodiscard]] std::vector<std::string> switches();
    /// The one visible element of that name; null without.
    [[nodiscard]] QAccessibleInterface* element(const std::string& name);
    [[nodiscard]] bool isOn(const std::string& name);
    void press(const std::string& name);
    void toggle(const std::string& name);

    void type(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    /// A key press from auto-repeat.
    void repeat(Qt::Key key);
    void click(const std::string& name);
    void focus(const std::string& name);
    /// The name of the element with the keyboard focus; empty without.
    [[nodiscard]] std::string focused();

    static void expectNear(const QColor& seen, const QColor& wanted, int tolerance = 3);
    /// In the window's coordinates.
    [[nodiscard]] QRectF placeOf(const std::string& name);
    [[nodiscard]] QColor colorAt(int x, int y);
    /// The window, scaled to one pixel per point.
    [[nodiscard]] QImage picture1x();

    struct LoneParticle {
        double x;
        double y;
        double size;
        double opacity;
    };

    /// The next launch has this particle alone in the window, until the others come in from below.
    void scriptParticle(const LoneParticle& particle);

    void withoutParticles() { scriptParticle({.x = 0, .y = -100, .size = 40, .opacity = 0.08}); }

    /// Saves a picture of the window in the folder screens beside the test program.
    void savePicture(const std::string& name);

    SimulatedMachine m_machine;
    SimulatedDesktop m_desktop;
    std::shared_ptr<FakeEffect> m_keyboard = std::make_shared<FakeEffect>();
    std::shared_ptr<FakeEffect> m_fan = std::make_shared<FakeEffect>();
    FakeStartup m_startup;
    FakeEffects m_effects;
    AnimationClock m_animations;
    std::unique_ptr<ContentView> m_content;
    std::unique_ptr<MainWindow> m_window;
    int m_frames = 0;

private:
    [[nodiscard]] bool isMoving();
};

} // namespace quorvane
