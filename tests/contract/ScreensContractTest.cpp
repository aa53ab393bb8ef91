#include <gmock/gmock.h>

#include "platform/linux/overlays/LinuxScreens.h"
#include "platform/simulated/SimulatedScreens.h"
#include "tests/contract/Contract.h"
#include "tests/support/Environment.h"
#include "tests/support/TestDesktop.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A machine with one screen of 1280 by 800.
class ScreensBackend : public ContractBackend {
public:
    [[nodiscard]] virtual ScreenService& screens() = 0;
    /// The widths of the panels that are up, the foremost last.
    [[nodiscard]] virtual std::vector<double> shownWidths() = 0;
};

class SimulatedBackend final : public ScreensBackend {
public:
    SimulatedBackend() { m_screens.setMainScreen(Rect{.width = 1280, .height = 800}); }

    [[nodiscard]] ScreenService& screens() override { return m_screens; }

    [[nodiscard]] std::vector<double> shownWidths() override {
        std::vector<double> widths;
        for (const auto& panel : m_screens.shownPanels())
            widths.push_back(panel->frame.width);
        return widths;
    }

private:
    SimulatedScreens m_screens;
};

class LinuxBackend final : public ScreensBackend {
public:
    [[nodiscard]] ScreenService& screens() override { return m_screens; }

    [[nodiscard]] std::vector<double> shownWidths() override {
        waitFor(30ms);
        std::vector<double> widths;
        for (const QRect& panel : m_desktop.panels())
            widths.push_back(panel.width());
        return widths;
    }

private:
    // No buses: those of the machine could say that the session is locked.
    EnvironmentVariable m_systemBus{"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere"};
    EnvironmentVariable m_sessionBus{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere"};
    TestDesktop m_desktop;
    LinuxScreens m_screens;
};

class ScreensContract : public Contract<ScreensBackend> {
protected:
    std::shared_ptr<OverlayPanel> makePanel(double width) {
        auto panel = m_backend->screens().createPanel(
            {.x = 0, .y = 0, .width = width, .height = 100}, PanelStyle::nonactivatingPanel,
            PanelBacking::buffered, false);
        panel->setLevel(PanelLevel::screenSaver);
        return panel;
    }
};

} // namespace

TEST_P(ScreensContract, MainScreenIsTheWholeScreen) {
    const auto screen = m_backend->screens().mainScreen();
    ASSERT_TRUE(screen);
    EXPECT_EQ(screen->frame(), (Rect{.width = 1280, .height = 800}));
}

TEST_P(ScreensContract, PanelIsUpFromOrderingFrontToOrderingOut) {
    const auto panel = makePanel(300);
    EXPECT_THAT(m_backend->shownWidths(), IsEmpty());
    panel->orderFrontRegardless();
    EXPECT_THAT(m_backend->shownWidths(), ElementsAre(300));
    panel->orderOut();
    EXPECT_THAT(m_backend->shownWidths(), IsEmpty());
}

TEST_P(ScreensContract, OrderingFrontOrOutTwiceIsHarmless) {
    const auto panel = makePanel(300);
    panel->orderOut();
    panel->orderFrontRegardless();
    panel->orderFrontRegardless();
    EXPECT_THAT(m_backend->shownWidths(), ElementsAre(300));
    panel->orderOut();
    panel->orderOut();
    EXPECT_THAT(m_backend->shownWidths(), IsEmpty());
}

TEST_P(ScreensContract, PanelStaysUpWithoutItsHandle) {
    makePanel(300)->orderFrontRegardless();
    EXPECT_THAT(m_backend->shownWidths(), ElementsAre(300));
}

TEST_P(ScreensContract, PanelReleasedBeforeItIsShownIsNeverSeen) {
    makePanel(300).reset();
    EXPECT_THAT(m_backend->shownWidths(), IsEmpty());
}

TEST_P(ScreensContract, PanelThatIsOrderedFrontLaterIsOnTop) {
    const auto one = makePanel(300);
    const auto other = makePanel(400);
    one->orderFrontRegardless();
    other->orderFrontRegardless();
    EXPECT_THAT(m_backend->shownWidths(), ElementsAre(300, 400));
    one->orderFrontRegardless();
    EXPECT_THAT(m_backend->shownWidths(), ElementsAre(400, 300));
}

TEST_P(ScreensContract, FrameChangesWhileThePanelIsUp) {
    const auto panel = makePanel(300);
    panel->orderFrontRegardless();
    panel->setFrame({.x = 0, .y = 0, .width = 500, .height = 100}, true);
    EXPECT_THAT(m_backend->shownWidths(), ElementsAre(500));
}

INSTANTIATE_TEST_SUITE_P(Simulated, ScreensContract, on<SimulatedBackend>());
INSTANTIATE_TEST_SUITE_P(Linux, ScreensContract, on<LinuxBackend>());

} // namespace quorvane
