#include "tests/effects/startup/StartupFixture.h"

#include <functional>
#include <utility>

#include "tests/support/ExchangedPlatform.h"

namespace quorvane {
namespace {

using testing::IsEmpty;

using StartupLoginTest = StartupFixture;

TEST_F(StartupLoginTest, LaunchedAtLoginInTheBackgroundItPlaysOnceHalfASecondLater) {
    machine.application.loginItem = LoginItemStatus::Enabled;
    makeManager();
    advance(0.499);
    EXPECT_FALSE(manager->isPlayingTractor());
    advance(0.001);
    EXPECT_TRUE(manager->isPlayingTractor());
    advance(60);
    EXPECT_EQ(machine.console.lines.size(), 6U);
}

TEST_F(StartupLoginTest, WithoutALoginItemItStaysSilent) {
    for (const auto status : {LoginItemStatus::NotRegistered, LoginItemStatus::RequiresApproval,
                              LoginItemStatus::NotFound}) {
        machine.application.loginItem = status;
        makeManager();
        EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
        advance(2);
        EXPECT_THAT(machine.console.lines, IsEmpty());
    }
}

/// A workspace centre that records how much is scheduled when an observer is added.
class NotingWorkspace final : public InProcessNotificationCenter {
public:
    explicit NotingWorkspace(const SimulatedRunLoop& runLoop) : m_runLoop(runLoop) {}

    Token addObserver(std::string_view name, std::function<void()> block) override {
        scheduled.push_back(m_runLoop.pendingCount());
        return InProcessNotificationCenter::addObserver(name, std::move(block));
    }

    std::vector<std::size_t> scheduled;

private:
    const SimulatedRunLoop& m_runLoop;
};

TEST_F(StartupLoginTest, WakeUpsAreObservedBeforeTheLoginCheck) {
    NotingWorkspace workspace(machine.runLoop);
    machine.application.loginItem = LoginItemStatus::Enabled;
    manager = StartupSoundManager::create(exchange(machine.platform(), {.workspace = &workspace}));
    EXPECT_THAT(workspace.scheduled, testing::ElementsAre(0U));
    EXPECT_EQ(machine.runLoop.pendingCount(), 1U);
    manager.reset();
}

TEST_F(StartupLoginTest, ALoginItemRegisteredAfterTheStartPlaysNothing) {
    makeManager();
    machine.application.loginItem = LoginItemStatus::Enabled;
    advance(2);
    EXPECT_THAT(machine.console.lines, IsEmpty());
}

TEST_F(StartupLoginTest, AWakeUpWithinTheHalfSecondReplacesTheLogin) {
    machine.application.loginItem = LoginItemStatus::Enabled;
    makeManager();
    advance(0.2);
    wakeUp();
    const auto lines = machine.console.lines;
    advance(1);
    EXPECT_EQ(machine.console.lines, lines);
}

TEST_F(StartupLoginTest, InFrontHalfASecondAfterLaunchItStaysSilent) {
    machine.application.loginItem = LoginItemStatus::Enabled;
    makeManager();
    advance(0.4);
    machine.application.active = true;
    advance(2);
    EXPECT_THAT(machine.console.lines, IsEmpty());
}

TEST_F(StartupLoginTest, InFrontOnlyAtLaunchItPlays) {
    machine.application.loginItem = LoginItemStatus::Enabled;
    machine.application.active = true;
    makeManager();
    advance(0.4);
    machine.application.active = false;
    advance(0.2);
    EXPECT_TRUE(manager->isPlayingTractor());
}

TEST_F(StartupLoginTest, SwitchedOffWithinTheHalfSecondTheLoginStaysSilent) {
    machine.application.loginItem = LoginItemStatus::Enabled;
    makeManager();
    manager->startupSoundEnabled() = false;
    advance(2);
    EXPECT_THAT(machine.console.lines, IsEmpty());
}

} // namespace
} // namespace quorvane
