#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

#include "effects/crash/BSODManager.h"
#include "effects/crash/FreezeManager.h"
#include "platform/simulated/SimulatedMachine.h"
#include "tests/support/ExchangedPlatform.h"

namespace quorvane {
namespace {

using testing::ElementsAre;

/// Forwards to simulated screens and notes how many panels are shown when another one is made.
class WatchedScreens final : public ScreenService {
public:
    explicit WatchedScreens(SimulatedScreens& real) : m_real(real) {}

    [[nodiscard]] std::shared_ptr<Screen> mainScreen() override { return m_real.mainScreen(); }

    [[nodiscard]] std::string obstacle() override { return m_real.obstacle(); }

    [[nodiscard]] std::shared_ptr<OverlayPanel> createPanel(const Rect& contentRect,
                                                            unsigned styleMask, unsigned backing,
                                                            bool defer) override {
        shownBefore.push_back(m_real.shownPanels().size());
        return m_real.createPanel(contentRect, styleMask, backing, defer);
    }

    std::vector<std::size_t> shownBefore;

private:
    SimulatedScreens& m_real;
};

/// A panel that is still shown when the next one of its effect comes.
class ReplacedPanelTest : public testing::Test {
protected:
    SimulatedMachine machine;
    WatchedScreens screens{machine.screens};
    Platform platform = exchange(machine.platform(), {.screens = &screens});
};

TEST_F(ReplacedPanelTest, AStopScreenIsOrderedOutBeforeTheNextOneIsMade) {
    const auto manager = BSODManager::create(platform);
    manager->start();
    machine.runLoop.advance(29);
    // The main thread is busy: the screen of 30 s comes at 43.5 s, less than 5 s before the next.
    machine.runLoop.block(14.5);
    machine.runLoop.advance(1.4);
    ASSERT_EQ(machine.screens.shownPanels().size(), 1U);
    machine.runLoop.advance(0.2);
    EXPECT_THAT(screens.shownBefore, ElementsAre(0U, 0U, 0U));
    EXPECT_EQ(machine.screens.panels().at(1)->calls.back(), "out");
    EXPECT_EQ(machine.screens.shownPanels().size(), 1U);
    manager->stop();
}

TEST_F(ReplacedPanelTest, AFreezeIsOrderedOutBeforeTheNextOneIsMade) {
    const auto manager = FreezeManager::create(platform);
    // Of 2^53: the restart freezes from 42 s on, the chain of the old freeze from 44 s on.
    constexpr std::uint64_t highest = 9007199254740992;
    machine.random.script({0, highest, 0, 0, highest, highest});
    manager->start();
    machine.runLoop.advance(22);
    manager->stop();
    manager->start();
    machine.runLoop.advance(21);
    ASSERT_EQ(machine.screens.shownPanels().size(), 1U);
    machine.runLoop.advance(2);
    EXPECT_THAT(screens.shownBefore, ElementsAre(0U, 0U, 0U));
    EXPECT_EQ(machine.screens.panels().at(1)->calls.back(), "out");
    EXPECT_EQ(machine.screens.shownPanels().size(), 1U);
    manager->stop();
}

} // namespace
} // namespace quorvane
