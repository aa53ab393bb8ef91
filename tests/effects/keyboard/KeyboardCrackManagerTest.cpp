#include "tests/effects/keyboard/KeyboardCrackManagerFixture.h"

#include <gmock/gmock.h>

namespace quorvane {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

// Loading.

TEST_F(KeyboardCrackManagerTest, TheSoundIsPreparedOnceAtHalfVolume) {
    makeManager();
    ASSERT_EQ(machine.audio.filePlayerCount(), 1U);
    EXPECT_THAT(machine.audio.filePlayer(0).calls(), ElementsAre("prepare", "volume 0.5"));
    EXPECT_THAT(machine.console.lines, ElementsAre("✅ [KEYBOARD] keyboard.mp3 loaded"));
}

TEST_F(KeyboardCrackManagerTest, AMissingSoundPrintsALineAndNothingStarts) {
    machine.bundle.removeResources();
    machine.accessibility.trusted = false;
    makeListening();
    machine.runLoop.advance(10);
    EXPECT_THAT(machine.console.lines, ElementsAre("⚠️ [KEYBOARD] keyboard.mp3 not found"));
    EXPECT_FALSE(manager->isActive());
    EXPECT_EQ(machine.accessibility.prompts, 0);
    EXPECT_THAT(machine.eventTaps.calls(), IsEmpty());
}

TEST_F(KeyboardCrackManagerTest, AnUndecodableSoundPrintsTheLoadedLineAndNothingStarts) {
    machine.audio.addNonAudioFile(crackPath);
    makeListening();
    EXPECT_THAT(machine.console.lines, ElementsAre("✅ [KEYBOARD] keyboard.mp3 loaded"));
    EXPECT_FALSE(manager->isActive());
    EXPECT_THAT(machine.eventTaps.calls(), IsEmpty());
}

TEST_F(KeyboardCrackManagerTest, ADamagedSoundPrintsTheLoadedLineAndNothingStarts) {
    machine.audio.addDamagedFile(crackPath, {.sampleRate = 1000, .channels = 1},
                                 std::vector<float>(200, 0.5F));
    machine.accessibility.trusted = false;
    makeListening();
    machine.runLoop.advance(10);
    EXPECT_THAT(machine.console.lines, ElementsAre("✅ [KEYBOARD] keyboard.mp3 loaded"));
    EXPECT_FALSE(manager->isActive());
    EXPECT_EQ(machine.accessibility.prompts, 0);
    EXPECT_THAT(machine.eventTaps.calls(), IsEmpty());
}

// Starting.

TEST_F(KeyboardCrackManagerTest, NothingIsTappedBeforeTheStart) {
    makeManager();
    EXPECT_THAT(machine.eventTaps.calls(), IsEmpty());
    EXPECT_EQ(machine.audio.holdCount(), 0U);
    EXPECT_FALSE(manager->isActive());
    EXPECT_FALSE(*manager->hasPermission());
}

TEST_F(KeyboardCrackManagerTest, TheTapListensToKeyDownsOfTheSessionOnly) {
    makeListening();
    EXPECT_THAT(machine.eventTaps.calls(),
                ElementsAre("create location 1 placement 0 options 1 events 0x400", "source 0",
                            "add", "enable yes"));
    EXPECT_TRUE(manager->isActive());
    EXPECT_TRUE(*manager->hasPermission());
    EXPECT_EQ(machine.console.lines.back(), startedLine);
}

TEST_F(KeyboardCrackManagerTest, ItIsActiveOnceTheTapAndTheOutputAreReady) {
    makeManager();
    std::vector<std::string> calls;
    std::vector<std::size_t> holds;
    const auto active = manager->isActive().observe([&] {
        calls.push_back(machine.eventTaps.calls().back());
        holds.push_back(machine.audio.holdCount());
        EXPECT_EQ(machine.console.lines.size(), 1U) << "its own line comes last";
    });
    manager->start();
    EXPECT_EQ(machine.console.lines.back(), startedLine);
    EXPECT_THAT(calls, ElementsAre("enable yes"));
    EXPECT_THAT(holds, ElementsAre(1U));
}

TEST_F(KeyboardCrackManagerTest, ItIsInactiveOnceTheTapAndTheOutputAreReleased) {
    makeListening();
    std::size_t open = 1;
    std::size_t holds = 1;
    const auto active = manager->isActive().observe([&] {
        open = machine.eventTaps.openCount();
        holds = machine.audio.holdCount();
    });
    manager->stop();
    EXPECT_EQ(open, 0U);
    EXPECT_EQ(holds, 0U);
}

TEST_F(KeyboardCrackManagerTest, StartingTwiceCreatesNoSecondTap) {
    makeListening();
    const auto calls = machine.eventTaps.calls();
    manager->start();
    EXPECT_EQ(machine.eventTaps.calls(), calls);
}

TEST_F(KeyboardCrackManagerTest, ATapThatCannotBeCreatedPrintsALineAndChangesNothingElse) {
    machine.faults->fail(Fault::Tap, "");
    makeListening();
    EXPECT_EQ(machine.console.lines.back(), failedLine);
    EXPECT_FALSE(manager->isActive());
    EXPECT_TRUE(*manager->hasPermission()) << "the query returned true";
    EXPECT_EQ(machine.audio.holdCount(), 0U);
}

TEST_F(KeyboardCrackManagerTest, ATapWithoutASourceCountsAsActiveButIsNotEnabled) {
    machine.faults->fail(Fault::TapSource, "");
    makeListening();
    EXPECT_TRUE(manager->isActive());
    EXPECT_THAT(machine.eventTaps.calls(),
                ElementsAre("create location 1 placement 0 options 1 events 0x400"));
    manager->stop();
    EXPECT_THAT(
        machine.eventTaps.calls(),
        ElementsAre("create location 1 placement 0 options 1 events 0x400", "enable no", "close"));
}

TEST_F(KeyboardCrackManagerTest, TheOutputIsHeldWhileListeningSoThatNoKeyIsLate) {
    makeListening();
    EXPECT_EQ(machine.audio.holdCount(), 1U);
    manager->stop();
    EXPECT_EQ(machine.audio.holdCount(), 0U);
}

// Stopping.

TEST_F(KeyboardCrackManagerTest, StoppingDisablesRemovesAndClosesInThatOrder) {
    makeListening();
    manager->stop();
    EXPECT_THAT(machine.eventTaps.calls(),
                ElementsAre("create location 1 placement 0 options 1 events 0x400", "source 0",
                            "add", "enable yes", "enable no", "remove", "close"));
    EXPECT_FALSE(manager->isActive());
    EXPECT_TRUE(*manager->hasPermission());
    EXPECT_EQ(machine.eventTaps.openCount(), 0U);
}

TEST_F(KeyboardCrackManagerTest, StoppingTwiceDoesNothingMore) {
    makeListening();
    manager->stop();
    const auto calls = machine.eventTaps.calls();
    manager->stop();
    EXPECT_EQ(machine.eventTaps.calls(), calls);
}

TEST_F(KeyboardCrackManagerTest, StoppingDoesNotCutTheLastCrackShort) {
    makeListening();
    press();
    manager->stop();
    EXPECT_TRUE(machine.audio.filePlayer(0).isPlaying());
}

TEST_F(KeyboardCrackManagerTest, StoppingPrintsNothing) {
    makeListening();
    const auto lines = machine.console.lines;
    manager->stop();
    EXPECT_EQ(machine.console.lines, lines);
}

TEST_F(KeyboardCrackManagerTest, StoppingBeforeAnyStartDoesNothing) {
    makeManager();
    manager->stop();
    EXPECT_FALSE(manager->isActive());
    EXPECT_THAT(machine.eventTaps.calls(), IsEmpty());
}

TEST_F(KeyboardCrackManagerTest, StartingAgainCreatesAFreshTap) {
    makeListening();
    manager->stop();
    manager->start();
    EXPECT_EQ(machine.eventTaps.openCount(), 1U);
    press();
    EXPECT_EQ(cracks(), 1U);
}

TEST_F(KeyboardCrackManagerTest, TheRateLimitSurvivesStoppingAndStarting) {
    makeListening();
    press();
    manager->stop();
    manager->start();
    machine.runLoop.advance(0.1);
    press();
    EXPECT_EQ(cracks(), 1U);
}

TEST_F(KeyboardCrackManagerTest, DroppingTheManagerStopsIt) {
    makeListening();
    manager.reset();
    EXPECT_THAT(machine.eventTaps.calls(),
                ElementsAre("create location 1 placement 0 options 1 events 0x400", "source 0",
                            "add", "enable yes", "enable no", "remove", "close"));
    EXPECT_EQ(machine.audio.holdCount(), 0U);
    EXPECT_TRUE(KeyboardCrackManager::shared.expired());
}

TEST_F(KeyboardCrackManagerTest, KeysReachTheLatestInstance) {
    makeListening();
    auto second = KeyboardCrackManager::create(machine.platform());
    EXPECT_EQ(KeyboardCrackManager::shared.lock(), second);
    press();
    EXPECT_THAT(machine.audio.filePlayer(0).calls(), testing::Not(Contains("play")));
    EXPECT_THAT(machine.audio.filePlayer(1).calls(), Contains("play"));
}

TEST_F(KeyboardCrackManagerTest, TheDestructionOfAnEarlierInstanceLeavesTheLatestShared) {
    makeListening();
    auto second = KeyboardCrackManager::create(machine.platform());
    second->start();
    manager.reset();
    EXPECT_EQ(KeyboardCrackManager::shared.lock(), second);
    press();
    EXPECT_THAT(machine.audio.filePlayer(1).calls(), Contains("play"));
}

TEST_F(KeyboardCrackManagerTest, TheDestructionOfTheLatestInstanceSharesNoEarlierOne) {
    makeListening();
    KeyboardCrackManager::create(machine.platform()).reset();
    EXPECT_TRUE(KeyboardCrackManager::shared.expired());
    press();
    EXPECT_EQ(cracks(), 0U);
}

} // namespace
} // namespace quorvane
