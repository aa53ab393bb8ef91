#include "tests/effects/keyboard/KeyboardCrackManagerFixture.h"

#include <gmock/gmock.h>

#include "tests/support/ExchangedPlatform.h"

namespace quorvane {
namespace {

using testing::IsEmpty;

TEST_F(KeyboardCrackManagerTest, WithoutPermissionThereIsOnePrompt) {
    machine.accessibility.trusted = false;
    makeListening();
    EXPECT_EQ(machine.accessibility.prompts, 1);
    EXPECT_FALSE(manager->isActive());
    EXPECT_FALSE(*manager->hasPermission());
    EXPECT_THAT(machine.eventTaps.calls(), IsEmpty());
    machine.runLoop.advance(60);
    EXPECT_EQ(machine.accessibility.prompts, 1);
}

TEST_F(KeyboardCrackManagerTest, PermissionGivenWithinThreeSecondsStartsTheTapThen) {
    machine.accessibility.trusted = false;
    makeListening();
    machine.accessibility.trusted = true;
    machine.runLoop.advance(2.999);
    EXPECT_FALSE(manager->isActive());
    machine.runLoop.advance(0.001);
    EXPECT_TRUE(manager->isActive());
    EXPECT_TRUE(*manager->hasPermission());
}

TEST_F(KeyboardCrackManagerTest, ThereIsOneRetryOnly) {
    machine.accessibility.trusted = false;
    makeListening();
    machine.runLoop.advance(3);
    machine.accessibility.trusted = true;
    machine.runLoop.advance(60);
    EXPECT_FALSE(manager->isActive());
    EXPECT_FALSE(*manager->hasPermission());
    manager->start();
    EXPECT_TRUE(manager->isActive());
}

TEST_F(KeyboardCrackManagerTest, TheRetryOfAnActiveManagerDoesNothing) {
    machine.accessibility.trusted = false;
    makeListening();
    machine.accessibility.trusted = true;
    manager->start();
    const auto calls = machine.eventTaps.calls();
    machine.accessibility.trusted = false;
    machine.runLoop.advance(3);
    EXPECT_TRUE(*manager->hasPermission());
    EXPECT_EQ(machine.eventTaps.calls(), calls);
}

TEST_F(KeyboardCrackManagerTest, TwoStartsWithoutPermissionAskAndRetryTwiceAndMakeOneTap) {
    machine.accessibility.trusted = false;
    makeListening();
    machine.runLoop.advance(1);
    manager->start();
    EXPECT_EQ(machine.accessibility.prompts, 2);
    EXPECT_EQ(machine.runLoop.pendingCount(), 2U);
    machine.accessibility.trusted = true;
    machine.runLoop.advance(2);
    EXPECT_TRUE(manager->isActive()) << "by the first retry";
    const auto calls = machine.eventTaps.calls();
    machine.runLoop.advance(1);
    EXPECT_EQ(machine.eventTaps.calls(), calls);
    EXPECT_EQ(machine.eventTaps.openCount(), 1U);
}

TEST_F(KeyboardCrackManagerTest, OfTwoRetriesTheSecondStartsTheTapIfTheFirstCameTooEarly) {
    machine.accessibility.trusted = false;
    makeListening();
    machine.runLoop.advance(1);
    manager->start();
    machine.runLoop.advance(2.5);
    EXPECT_FALSE(manager->isActive());
    machine.accessibility.trusted = true;
    machine.runLoop.advance(0.5);
    EXPECT_TRUE(manager->isActive());
    EXPECT_EQ(machine.accessibility.prompts, 2) << "no retry asks";
}

TEST_F(KeyboardCrackManagerTest, StoppingDoesNotCancelTheRetry) {
    machine.accessibility.trusted = false;
    makeListening();
    manager->stop();
    machine.accessibility.trusted = true;
    machine.runLoop.advance(3);
    EXPECT_TRUE(manager->isActive());
}

TEST_F(KeyboardCrackManagerTest, TheRetryDoesNothingAfterTheManagersDestruction) {
    machine.accessibility.trusted = false;
    makeListening();
    manager.reset();
    machine.accessibility.trusted = true;
    machine.runLoop.advance(3);
    EXPECT_THAT(machine.eventTaps.calls(), IsEmpty());
}

TEST_F(KeyboardCrackManagerTest, RevokedPermissionIsNoticedByTheNextStart) {
    makeListening();
    machine.accessibility.trusted = false;
    machine.runLoop.advance(60);
    EXPECT_TRUE(manager->isActive()) << "the permission is not watched";
    EXPECT_TRUE(*manager->hasPermission());
    manager->stop();
    manager->start();
    EXPECT_FALSE(*manager->hasPermission());
    EXPECT_FALSE(manager->isActive());
    EXPECT_EQ(machine.accessibility.prompts, 1);
    EXPECT_EQ(machine.eventTaps.openCount(), 0U);
}

TEST_F(KeyboardCrackManagerTest, ATapThatCannotBeCreatedAtTheRetryPrintsALine) {
    machine.accessibility.trusted = false;
    makeListening();
    machine.accessibility.trusted = true;
    machine.faults->fail(Fault::Tap, "");
    machine.runLoop.advance(3);
    EXPECT_EQ(machine.console.lines.back(), failedLine);
    EXPECT_FALSE(manager->isActive());
    EXPECT_TRUE(*manager->hasPermission());
}

TEST_F(KeyboardCrackManagerTest, ThereIsNoObstacleBeforeAPrompt) {
    machine.accessibility.trusted = false;
    makeManager();
    EXPECT_EQ(manager->obstacle(), "");
    manager->start();
    EXPECT_EQ(manager->obstacle(), "Accessibility permission needed — enable in System Settings");
}

TEST_F(KeyboardCrackManagerTest, StoppingWithdrawsThePrompt) {
    machine.accessibility.trusted = false;
    makeListening();
    EXPECT_EQ(machine.accessibility.withdrawals, 0);
    manager->stop();
    EXPECT_EQ(machine.accessibility.withdrawals, 1);
    EXPECT_EQ(manager->obstacle(), "");
}

/// Trusted, with something for the user to do: as once the key reader was allowed.
class AllowingAccessibility final : public Accessibility {
public:
    [[nodiscard]] bool isProcessTrusted() const override { return trusted; }

    bool isProcessTrustedWithOptions(bool /*prompt*/) override { return trusted; }

    void withdrawPrompt() override {}

    [[nodiscard]] std::string obstacle() const override { return "Switch it on again"; }

    [[nodiscard]] Subscription observeObstacle(std::function<void()> /*observer*/) override {
        return {};
    }

    bool trusted = false;
};

TEST_F(KeyboardCrackManagerTest, PermissionThatComesBeforeTheRetryNeedsNothingMore) {
    AllowingAccessibility accessibility;
    manager = KeyboardCrackManager::create(
        exchange(machine.platform(), {.accessibility = &accessibility}));
    manager->start();
    EXPECT_EQ(manager->obstacle(), "Switch it on again");
    accessibility.trusted = true;
    EXPECT_EQ(manager->obstacle(), "");
    machine.runLoop.advance(3);
    EXPECT_TRUE(manager->isActive());
    manager.reset();
}

TEST_F(KeyboardCrackManagerTest, PermissionThatComesAfterTheRetryTakesAnotherStart) {
    AllowingAccessibility accessibility;
    manager = KeyboardCrackManager::create(
        exchange(machine.platform(), {.accessibility = &accessibility}));
    manager->start();
    machine.runLoop.advance(3);
    accessibility.trusted = true;
    EXPECT_EQ(manager->obstacle(), "Switch it on again");
    manager->start();
    EXPECT_TRUE(manager->isActive());
    manager.reset();
}

/// A permission that is given at the prompt.
class WillingAccessibility final : public Accessibility {
public:
    [[nodiscard]] bool isProcessTrusted() const override { return trusted; }

    bool isProcessTrustedWithOptions(bool prompt) override {
        prompts += prompt ? 1 : 0;
        trusted = trusted || prompt;
        return trusted;
    }

    void withdrawPrompt() override {}

    [[nodiscard]] std::string obstacle() const override { return {}; }

    [[nodiscard]] Subscription observeObstacle(std::function<void()> /*observer*/) override {
        return {};
    }

    bool trusted = false;
    int prompts = 0;
};

TEST_F(KeyboardCrackManagerTest, PermissionGivenAtThePromptIsStoredAtOnceAndUsedByTheRetry) {
    WillingAccessibility accessibility;
    manager = KeyboardCrackManager::create(
        exchange(machine.platform(), {.accessibility = &accessibility}));
    manager->start();
    EXPECT_TRUE(*manager->hasPermission());
    EXPECT_FALSE(manager->isActive());
    machine.runLoop.advance(3);
    EXPECT_TRUE(manager->isActive());
    manager.reset();
}

TEST_F(KeyboardCrackManagerTest, PermissionGivenAtThePromptAndRevokedBeforeTheRetryStartsNothing) {
    WillingAccessibility accessibility;
    manager = KeyboardCrackManager::create(
        exchange(machine.platform(), {.accessibility = &accessibility}));
    manager->start();
    accessibility.trusted = false;
    machine.runLoop.advance(3);
    EXPECT_FALSE(*manager->hasPermission());
    EXPECT_THAT(machine.eventTaps.calls(), IsEmpty());
    EXPECT_EQ(accessibility.prompts, 1) << "the retry shows no prompt";
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U) << "there is no second retry";
    manager.reset();
}

} // namespace
} // namespace quorvane
