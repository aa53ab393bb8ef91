#include "tests/app/screens/views/LayoutFixture.h"

#include "app/screens/bridge/PressControl.h"

namespace quorvane {
namespace {

class MainWindowTest : public ScreensTest {
protected:
    double scaleOfTheSign() { return findText(m_window->window().rootObject(), "⚠️")->scale(); }

    [[nodiscard]] bool hasProbed() const { return !m_machine.console.lines.empty(); }
};

TEST_F(MainWindowTest, HasItsTitleAndAFixedSize) {
    launch();
    const QQuickView& window = m_window->window();
    EXPECT_EQ(window.title(), "Quorvane");
    EXPECT_EQ(window.size(), QSize(550, 780));
    EXPECT_EQ(window.minimumSize(), QSize(550, 780));
    EXPECT_EQ(window.maximumSize(), QSize(550, 780));
}

TEST_F(MainWindowTest, CallsOnAppearAfterItsFirstFrame) {
    makeWindow();
    bool framed = false;
    bool appeared = false;
    QObject::connect(&m_window->window(), &QQuickWindow::frameSwapped, m_window.get(),
                     [&framed] { framed = true; });
    QObject::connect(m_window.get(), &MainWindow::appeared, [&appeared] { appeared = true; });
    const std::size_t timersBefore = m_machine.runLoop.pendingCount();
    ASSERT_TRUE(m_window->show());
    EXPECT_EQ(m_content->textScale().get().value, 0.5);
    waitUntil([&framed] { return framed; }, "the first frame is drawn");
    waitUntil([&appeared] { return appeared; }, "the window has appeared");
    EXPECT_EQ(m_content->textScale().get().value, 1.0);
    EXPECT_EQ(m_machine.runLoop.pendingCount(), timersBefore + 1);
    settle();
    // Not again after the window was hidden and shown.
    m_window->window().hide();
    m_window->window().show();
    settle();
    EXPECT_EQ(m_machine.runLoop.pendingCount(), timersBefore + 1);
}

// A press before the first frame would open the control panel before the controller has looked for
// the lid sensor, and the creak would stay silent.
TEST_F(MainWindowTest, CannotBePressedBeforeItHasAppeared) {
    withHardwareChecked();
    makeWindow();
    ASSERT_TRUE(m_window->show());
    press(enter);
    EXPECT_FALSE(m_content->sufferingMode());
    waitUntil([this] { return hasProbed(); }, "the window has appeared");
    settle();
    press(enter);
    EXPECT_TRUE(m_content->sensor().isRunning());
}

TEST_F(MainWindowTest, IsWatchedByTheDesktop) {
    launch();
    EXPECT_EQ(m_desktop.watched, m_window->window().winId());
}

TEST_F(MainWindowTest, LetsTheWarningSignPopUpOnce) {
    withHardwareChecked();
    appear();
    EXPECT_EQ(scaleOfTheSign(), 0.5);
    animate(100);
    EXPECT_NEAR(scaleOfTheSign(), 0.6728, 0.0001);
    animate(300);
    EXPECT_NEAR(scaleOfTheSign(), 1.0459, 0.0001) << "it overshoots";
    settle();
    EXPECT_EQ(scaleOfTheSign(), 1);
    press(enter);
    settle();
    press(stop);
    animate(20);
    EXPECT_EQ(scaleOfTheSign(), 1);
}

TEST_F(MainWindowTest, ClosingStopsEverythingOnce) {
    m_effects.keyboard = [this] { return m_keyboard; };
    launchIntoControlPanel();
    toggle("Build quality");
    toggle("Keyboard");
    int closed = 0;
    QObject::connect(m_window.get(), &MainWindow::closed, [&] {
        ++closed;
        EXPECT_FALSE(m_content->audioEnabled());
        EXPECT_EQ(m_keyboard->stops, 1);
    });
    m_window->window().close();
    EXPECT_EQ(closed, 1);
    EXPECT_FALSE(m_content->sufferingMode());
    m_window->close();
    EXPECT_EQ(closed, 1);
    EXPECT_EQ(m_keyboard->stops, 1);
}

TEST_F(MainWindowTest, NeverAppearsIfClosedBeforeItsFirstFrame) {
    makeWindow();
    int appeared = 0;
    int closed = 0;
    QObject::connect(m_window.get(), &MainWindow::appeared, [&appeared] { ++appeared; });
    QObject::connect(m_window.get(), &MainWindow::closed, [&closed] { ++closed; });
    ASSERT_TRUE(m_window->show());
    m_window->close();
    draw();
    EXPECT_EQ(appeared, 0);
    EXPECT_EQ(closed, 1);
}

TEST_F(MainWindowTest, PressesItsControlsByName) {
    launchChecked();
    EXPECT_FALSE(pressControl(m_window->window(), "CONTINUE"));
    EXPECT_FALSE(pressControl(m_window->window(), "CAUTION")) << "a text is no control";
    EXPECT_TRUE(pressControl(m_window->window(), enter));
    EXPECT_TRUE(m_content->sufferingMode());
    settle();
    EXPECT_TRUE(pressControl(m_window->window(), "Build quality"));
    EXPECT_TRUE(m_content->audioEnabled());
}

} // namespace
} // namespace quorvane
