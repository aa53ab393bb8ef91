#include "tests/effects/keyboard/KeyboardCrackManagerFixture.h"

#include <gmock/gmock.h>

#include "tests/support/ExchangedPlatform.h"

namespace quorvane {
namespace {

using testing::ElementsAre;

TEST_F(KeyboardCrackManagerTest, AKeyCracksFromTheMainQueueNotFromTheTap) {
    makeListening();
    machine.runLoop.holdMainQueue(true);
    EXPECT_TRUE(machine.eventTaps.pressKey());
    EXPECT_EQ(cracks(), 0U);
    machine.runLoop.holdMainQueue(false);
    machine.runLoop.runMainQueue();
    EXPECT_EQ(cracks(), 1U);
}

TEST_F(KeyboardCrackManagerTest, TheFirstCrackAfterLaunchAlwaysPlays) {
    makeListening();
    press();
    EXPECT_EQ(cracks(), 1U);
}

TEST_F(KeyboardCrackManagerTest, TwoKeysLessThan150MsApartGiveOneCrack) {
    makeListening();
    for (const double apart : {0.149, 0.1499}) {
        machine.runLoop.advance(1);
        const std::size_t before = cracks();
        press();
        machine.runLoop.advance(apart);
        press();
        EXPECT_EQ(cracks() - before, 1U) << apart;
    }
}

TEST_F(KeyboardCrackManagerTest, TwoKeysMoreThan150MsApartGiveTwoCracks) {
    makeListening();
    press();
    machine.runLoop.advance(0.1501);
    press();
    EXPECT_EQ(cracks(), 2U);
}

// Only while the clock is small can two of its doubles differ by exactly 0.15.
TEST(KeyboardCrackInterval, OfExactly150MsIsLongEnough) {
    SimulatedMachine machine;
    machine.audio.addFile(crackPath, {.sampleRate = 1000, .channels = 1},
                          std::vector<float>(200, 0.5F));
    machine.bundle.addResource("keyboard", "mp3", crackPath);
    const auto manager = KeyboardCrackManager::create(machine.platform());
    machine.runLoop.advance(0.15);
    manager->playCrack();
    EXPECT_EQ(machine.audio.timeline().size(), 1U);
    machine.runLoop.advance(0.15);
    ASSERT_EQ(machine.runLoop.currentMediaTime() - 0.15, 0.15);
    manager->playCrack();
    EXPECT_EQ(machine.audio.timeline().size(), 2U);
}

TEST_F(KeyboardCrackManagerTest, AKeyThatWasTooEarlyDoesNotDelayTheNextCrack) {
    makeListening();
    press();
    machine.runLoop.advance(0.1);
    press();
    machine.runLoop.advance(0.06);
    press();
    EXPECT_EQ(cracks(), 2U);
}

TEST_F(KeyboardCrackManagerTest, ABurstOfKeysAtOneInstantGivesOneCrackAndNoReplay) {
    makeListening();
    for (int i = 0; i < 64; ++i)
        EXPECT_TRUE(machine.eventTaps.pressKey());
    machine.runLoop.runMainQueue();
    machine.runLoop.advance(60);
    EXPECT_EQ(cracks(), 1U);
}

TEST_F(KeyboardCrackManagerTest, AHeldKeyCracksOnceHoweverLongItIsHeld) {
    makeListening();
    press();
    for (int i = 0; i < 100; ++i) {
        machine.runLoop.advance(0.2);
        press(/*autorepeat=*/1);
    }
    EXPECT_EQ(cracks(), 1U);
}

TEST_F(KeyboardCrackManagerTest, KeyUpsModifiersAndDisablingNeverCrackNorReenable) {
    makeListening();
    const auto calls = machine.eventTaps.calls();
    for (const auto type : {TapEventType::KeyUp, TapEventType::FlagsChanged,
                            TapEventType::DisabledByTimeout, TapEventType::DisabledByUserInput})
        EXPECT_TRUE(machine.eventTaps.send({.type = type}));
    machine.runLoop.advance(1);
    EXPECT_EQ(cracks(), 0U);
    EXPECT_EQ(machine.eventTaps.calls(), calls);
}

TEST_F(KeyboardCrackManagerTest, EveryCrackRestartsTheClip) {
    makeListening();
    press();
    machine.runLoop.advance(0.16);
    press();
    const auto& sounds = machine.audio.timeline();
    ASSERT_EQ(sounds.size(), 2U);
    EXPECT_EQ(sounds[1].offset, 0);
    EXPECT_NEAR(sounds[0].stopTime, sounds[1].startTime, 1e-9);
    EXPECT_THAT(
        machine.audio.filePlayer(0).calls(),
        ElementsAre("prepare", "volume 0.5", "currentTime 0", "play", "currentTime 0", "play"));
}

TEST_F(KeyboardCrackManagerTest, CracksAreSpacedByTheMediaClock) {
    makeListening();
    press();
    machine.runLoop.setDate(2e9);
    press();
    EXPECT_EQ(cracks(), 1U);
    machine.runLoop.setDate(1e9);
    machine.runLoop.advance(0.2);
    press();
    EXPECT_EQ(cracks(), 2U);
}

TEST_F(KeyboardCrackManagerTest, AKeyWhoseManagerIsDestroyedMeanwhilePlaysNothing) {
    makeListening();
    machine.runLoop.holdMainQueue(true);
    EXPECT_TRUE(machine.eventTaps.pressKey());
    manager.reset();
    machine.runLoop.holdMainQueue(false);
    machine.runLoop.runMainQueue();
    EXPECT_EQ(cracks(), 0U);
}

TEST_F(KeyboardCrackManagerTest, WithoutASoundACrackIsSilent) {
    machine.bundle.removeResources();
    makeManager();
    manager->playCrack();
    EXPECT_EQ(cracks(), 0U);
}

// The callback itself, called also with events outside the mask.

/// Taps whose callback a test can call.
class CallableTaps final : public EventTapService {
public:
    explicit CallableTaps(EventTapService& taps) : m_taps(taps) {}

    std::shared_ptr<EventTap> createTap(TapLocation location, TapPlacement placement,
                                        TapOptions options, std::uint64_t events,
                                        TapCallback given) override {
        callback = given;
        return m_taps.createTap(location, placement, options, events, given);
    }

    TapCallback callback = nullptr;

private:
    EventTapService& m_taps;
};

class TapCallbackTest : public KeyboardCrackManagerTest {
protected:
    TapCallbackTest() {
        manager = KeyboardCrackManager::create(exchange(machine.platform(), {.eventTaps = &taps}));
        manager->start();
    }

    /// Number of cracks after a call of the callback.
    std::size_t cracksOf(const TapEvent& event) {
        machine.runLoop.advance(1);
        const std::size_t before = cracks();
        EXPECT_EQ(&taps.callback(event), &event) << "the event is returned";
        machine.runLoop.runMainQueue();
        return cracks() - before;
    }

    CallableTaps taps{machine.eventTaps};
};

TEST_F(TapCallbackTest, CracksAtAKeyThatGoesDownAndAtNothingElse) {
    EXPECT_EQ(cracksOf({.type = TapEventType::KeyDown}), 1U);
    EXPECT_EQ(cracksOf({.type = TapEventType::KeyDown, .keyboardAutorepeat = 1}), 0U);
    EXPECT_EQ(cracksOf({.type = TapEventType::KeyDown, .keyboardAutorepeat = -1}), 0U);
    EXPECT_EQ(cracksOf({.type = TapEventType::KeyUp}), 0U);
    EXPECT_EQ(cracksOf({.type = TapEventType::FlagsChanged}), 0U);
    EXPECT_EQ(cracksOf({.type = TapEventType::DisabledByTimeout}), 0U);
    EXPECT_EQ(cracksOf({.type = TapEventType::DisabledByUserInput}), 0U);
    EXPECT_EQ(cracksOf({.type = TapEventType::KeyDown}), 1U);
}

TEST_F(TapCallbackTest, ReturnsTheEventAlsoWithoutAManager) {
    manager.reset();
    const TapEvent event;
    EXPECT_EQ(&taps.callback(event), &event);
    machine.runLoop.runMainQueue();
    EXPECT_EQ(cracks(), 0U);
}

} // namespace
} // namespace quorvane
