#include "tests/effects/keyboard/KeyboardCrackManagerFixture.h"

#include <gmock/gmock.h>

#include "tests/support/ExchangedPlatform.h"

namespace quorvane {
namespace {

using testing::IsEmpty;

TEST_F(KeyboardCrackManagerTest, without_permission_the_person_is_asked_once) {
    machine.system.trusted = false;
    makeListening();
    EXPECT_EQ(machine.system.prompts, 1);
    EXPECT_FALSE(manager->isActive());
    EXPECT_FALSE(manager->hasPermission());
    EXPECT_THAT(machine.eventTaps.calls(), IsEmpty());
    machine.runLoop.advance(60);
    EXPECT_EQ(machine.system.prompts, 1);
}

TEST_F(KeyboardCrackManagerTest, permission_given_within_three_seconds_starts_the_tap_then) {
    machine.system.trusted = false;
    makeListening();
    machine.system.trusted = true;
    machine.runLoop.advance(2.999);
    EXPECT_FALSE(manager->isActive());
    machine.runLoop.advance(0.001);
    EXPECT_TRUE(manager->isActive());
    EXPECT_TRUE(manager->hasPermission());
}

TEST_F(KeyboardCrackManagerTest, there_is_one_retry_only) {
    machine.system.trusted = false;
    makeListening();
    machine.runLoop.advance(3);
    machine.system.trusted = true;
    machine.runLoop.advance(60);
    EXPECT_FALSE(manager->isActive());
    EXPECT_FALSE(manager->hasPermission());
    manager->start();
    EXPECT_TRUE(manager->isActive());
}

TEST_F(KeyboardCrackManagerTest, the_retry_of_an_active_manager_does_nothing) {
    machine.system.trusted = false;
    makeListening();
    machine.system.trusted = true;
    manager->start();
    const auto calls = machine.eventTaps.calls();
    machine.system.trusted = false;
    machine.runLoop.advance(3);
    EXPECT_TRUE(manager->hasPermission());
    EXPECT_EQ(machine.eventTaps.calls(), calls);
}

TEST_F(KeyboardCrackManagerTest, stopping_does_not_call_the_retry_off) {
    machine.system.trusted = false;
    makeListening();
    manager->stop();
    machine.system.trusted = true;
    machine.runLoop.advance(3);
    EXPECT_TRUE(manager->isActive());
}

TEST_F(KeyboardCrackManagerTest, the_retry_outlives_the_manager_harmlessly) {
    machine.system.trusted = false;
    makeListening();
    manager.reset();
    machine.system.trusted = true;
    machine.runLoop.advance(3);
    EXPECT_THAT(machine.eventTaps.calls(), IsEmpty());
}

TEST_F(KeyboardCrackManagerTest, trust_that_goes_away_is_noticed_by_the_next_start) {
    makeListening();
    machine.system.trusted = false;
    machine.runLoop.advance(60);
    EXPECT_TRUE(manager->isActive()) << "it is not watched";
    EXPECT_TRUE(manager->hasPermission());
    manager->stop();
    manager->start();
    EXPECT_FALSE(manager->hasPermission());
    EXPECT_FALSE(manager->isActive());
    EXPECT_EQ(machine.system.prompts, 1);
    EXPECT_EQ(machine.eventTaps.openCount(), 0U);
}

TEST_F(KeyboardCrackManagerTest, trust_that_goes_away_before_the_retry_starts_nothing) {
    machine.system.trusted = false;
    makeListening();
    manager->hasPermission() = true;
    machine.runLoop.advance(3);
    EXPECT_FALSE(manager->hasPermission());
    EXPECT_THAT(machine.eventTaps.calls(), IsEmpty());
    EXPECT_EQ(machine.system.prompts, 1) << "the retry asks nobody";
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U) << "and there is no further one";
}

TEST_F(KeyboardCrackManagerTest, a_tap_that_cannot_be_created_at_the_retry_is_said) {
    machine.system.trusted = false;
    makeListening();
    machine.system.trusted = true;
    machine.eventTaps.refusesTap = true;
    machine.runLoop.advance(3);
    EXPECT_EQ(machine.console.lines.back(), failedLine);
    EXPECT_FALSE(manager->isActive());
    EXPECT_TRUE(manager->hasPermission());
}

/// A system whose person says yes as soon as they are asked.
class WillingSystem final : public SystemInfo {
public:
    [[nodiscard]] std::string modelName() const override { return {}; }

    [[nodiscard]] bool isProcessTrusted() const override { return m_asked; }

    bool isProcessTrustedWithOptions(bool prompt) override {
        m_asked = m_asked || prompt;
        return m_asked;
    }

private:
    bool m_asked = false;
};

TEST_F(KeyboardCrackManagerTest, a_yes_to_the_question_is_known_at_once_and_used_by_the_retry) {
    WillingSystem system;
    manager = KeyboardCrackManager::create(exchange(machine.platform(), {.system = &system}));
    manager->start();
    EXPECT_TRUE(manager->hasPermission());
    EXPECT_FALSE(manager->isActive());
    machine.runLoop.advance(3);
    EXPECT_TRUE(manager->isActive());
    manager.reset();
}

} // namespace
} // namespace quorvane
