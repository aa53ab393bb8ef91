#include "tests/effects/startup/StartupFixture.h"

#include <functional>
#include <utility>

#include "tests/support/ExchangedPlatform.h"

namespace quorvane {
namespace {

using testing::IsEmpty;

using StartupLoginTest = StartupFixture;

TEST_F(StartupLoginTest, opened_at_login_in_the_background_it_plays_once_after_half_a_second) {
    machine.application.loginItem = LoginItemStatus::Enabled;
    makeManager();
    advance(0.499);
    EXPECT_FALSE(manager->isPlayingTractor());
    advance(0.001);
    EXPECT_TRUE(manager->isPlayingTractor());
    advance(60);
    EXPECT_EQ(machine.console.lines.size(), 6U);
}

TEST_F(StartupLoginTest, not_registered_at_login_it_stays_silent) {
    for (const auto status : {LoginItemStatus::NotRegistered, LoginItemStatus::RequiresApproval,
                              LoginItemStatus::NotFound}) {
        machine.application.loginItem = status;
        makeManager();
        EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
        advance(2);
        EXPECT_THAT(machine.console.lines, IsEmpty());
    }
}

/// A workspace that notes how much is already scheduled when it gets an observer.
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

TEST_F(StartupLoginTest, wake_ups_are_observed_before_the_login_is_looked_at) {
    NotingWorkspace workspace(machine.runLoop);
    machine.application.loginItem = LoginItemStatus::Enabled;
    manager = StartupSoundManager::create(exchange(machine.platform(), {.workspace = &workspace}));
    EXPECT_THAT(workspace.scheduled, testing::ElementsAre(0U));
    EXPECT_EQ(machine.runLoop.pendingCount(), 1U);
    manager.reset();
}

TEST_F(StartupLoginTest, registered_after_its_start_it_stays_silent) {
    makeManager();
    machine.application.loginItem = LoginItemStatus::Enabled;
    advance(2);
    EXPECT_THAT(machine.console.lines, IsEmpty());
}

TEST_F(StartupLoginTest, a_wake_up_within_the_half_second_leaves_nothing_for_the_login) {
    machine.application.loginItem = LoginItemStatus::Enabled;
    makeManager();
    advance(0.2);
    wakeUp();
    const auto lines = machine.console.lines;
    advance(1);
    EXPECT_EQ(machine.console.lines, lines);
}

TEST_F(StartupLoginTest, in_front_half_a_second_after_launch_it_stays_silent) {
    machine.application.loginItem = LoginItemStatus::Enabled;
    makeManager();
    advance(0.4);
    machine.application.active = true;
    advance(2);
    EXPECT_THAT(machine.console.lines, IsEmpty());
}

TEST_F(StartupLoginTest, in_front_at_launch_only_it_plays) {
    machine.application.loginItem = LoginItemStatus::Enabled;
    machine.application.active = true;
    makeManager();
    advance(0.4);
    machine.application.active = false;
    advance(0.2);
    EXPECT_TRUE(manager->isPlayingTractor());
}

TEST_F(StartupLoginTest, switched_off_within_the_half_second_the_login_stays_silent) {
    machine.application.loginItem = LoginItemStatus::Enabled;
    makeManager();
    manager->startupSoundEnabled() = false;
    advance(2);
    EXPECT_THAT(machine.console.lines, IsEmpty());
}

} // namespace
} // namespace quorvane
