#include <array>
#include <cstring>
#include <gmock/gmock.h>
#include <memory>
#include <vector>

#include "platform/linux/haptics/EvdevForceFeedback.h"
#include "platform/linux/haptics/HapticDevice.h"
#include "tests/support/FakeForceFeedback.h"

namespace quorvane {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

HapticNode rumble(int number) {
    return {.node = "event" + std::to_string(number), .number = number, .kind = HapticKind::Rumble};
}

HapticNode touchpad(int number) {
    return {
        .node = "event" + std::to_string(number), .number = number, .kind = HapticKind::Touchpad};
}

HapticEffect clickOf(const ff_effect& effect) {
    HapticEffect click;
    std::memcpy(static_cast<void*>(&click), &effect.u, sizeof click);
    return click;
}

constexpr std::array patterns{HapticPattern::Generic, HapticPattern::Alignment,
                              HapticPattern::LevelChange};

TEST(HapticScanTest, CapabilitiesDecideTheKindOfPulses) {
    EXPECT_EQ(hapticKind("0"), std::nullopt);
    EXPECT_EQ(hapticKind(""), std::nullopt);
    EXPECT_EQ(hapticKind("no number"), std::nullopt);
    // As in sysfs: hexadecimal words of 64 bits, the highest first. FF_RUMBLE is bit 0x50.
    EXPECT_EQ(hapticKind("107030000 0"), HapticKind::Rumble);
    EXPECT_EQ(hapticKind("8000 0"), HapticKind::Touchpad);
    EXPECT_EQ(hapticKind("18000 0"), HapticKind::Touchpad);
    // Spring effects belong to steering wheels.
    EXPECT_EQ(hapticKind("200000 0"), std::nullopt);
    EXPECT_EQ(hapticKind("10000"), std::nullopt);
}

TEST(HapticScanTest, TouchpadsComeFirstAndThenTheLowestNumber) {
    std::vector nodes{rumble(10), rumble(2), touchpad(11), touchpad(7)};
    sortBySuitability(nodes);
    EXPECT_THAT(nodes, ElementsAre(touchpad(7), touchpad(11), rumble(2), rumble(10)));
}

TEST(HapticEffectsTest, ATouchpadGetsOnlyClicks) {
    for (const auto pattern : patterns) {
        const auto effect = hapticEffect(HapticKind::Touchpad, pattern);
        EXPECT_EQ(effect.type, 0x4F);
        EXPECT_EQ(effect.id, -1);
        const auto click = clickOf(effect);
        EXPECT_EQ(click.hidUsage, 0x1003);
        EXPECT_EQ(click.vendorID, 0);
        EXPECT_EQ(click.vendorWaveformPage, 0);
        EXPECT_EQ(click.repeatCount, 0);
        EXPECT_EQ(click.retriggerPeriod, 0);
    }
}

TEST(HapticEffectsTest, ThePatternSetsTheStrengthOfAClick) {
    const auto intensity = [](HapticPattern pattern) {
        return clickOf(hapticEffect(HapticKind::Touchpad, pattern)).intensity;
    };
    EXPECT_EQ(intensity(HapticPattern::Generic), 50);
    EXPECT_EQ(intensity(HapticPattern::Alignment), 70);
    EXPECT_EQ(intensity(HapticPattern::LevelChange), 100);
}

TEST(HapticEffectsTest, AClickHasTheKernelsLayout) {
    EXPECT_EQ(offsetof(ff_effect, u), 16U);
    EXPECT_EQ(sizeof(HapticEffect), 12U);
    EXPECT_EQ(offsetof(HapticEffect, vendorWaveformPage), 4U);
    EXPECT_EQ(offsetof(HapticEffect, intensity), 6U);
    EXPECT_EQ(offsetof(HapticEffect, retriggerPeriod), 10U);
}

TEST(HapticEffectsTest, ThePatternSetsTheStrengthAndLengthOfARumble) {
    const auto expectRumble = [](HapticPattern pattern, int strong, int weak, int milliseconds) {
        const auto effect = hapticEffect(HapticKind::Rumble, pattern);
        EXPECT_EQ(effect.type, FF_RUMBLE);
        EXPECT_EQ(effect.id, -1);
        EXPECT_EQ(effect.u.rumble.strong_magnitude, strong);
        EXPECT_EQ(effect.u.rumble.weak_magnitude, weak);
        EXPECT_EQ(effect.replay.length, milliseconds);
        EXPECT_EQ(effect.replay.delay, 0);
    };
    expectRumble(HapticPattern::Generic, 0, 0x6000, 20);
    expectRumble(HapticPattern::Alignment, 0x6000, 0x9000, 25);
    expectRumble(HapticPattern::LevelChange, 0x9000, 0x4000, 25);
}

TEST(HapticDeviceTest, WithoutDevicesThereIsNone) {
    FakeForceFeedback machine;
    EXPECT_EQ(HapticDevice::openBest(machine), nullptr);
}

TEST(HapticDeviceTest, ATouchpadIsPreferred) {
    FakeForceFeedback machine;
    machine.plug({.node = rumble(1)});
    machine.plug({.node = touchpad(9)});
    const auto device = HapticDevice::openBest(machine);
    EXPECT_THAT(machine.opened(), ElementsAre("event9"));
}

TEST(HapticDeviceTest, ADeviceThatCannotBeOpenedOrTakesNoEffectIsSkipped) {
    FakeForceFeedback machine;
    machine.plug({.node = touchpad(1), .mayBeOpened = false});
    machine.plug({.node = touchpad(2), .room = 0});
    machine.plug({.node = rumble(3)});
    const auto device = HapticDevice::openBest(machine);
    EXPECT_THAT(machine.opened(), ElementsAre("event3"));
}

/// The strength of the weak motor at each pulse so far.
std::vector<int> weakPulses(const FakeForceFeedback& machine) {
    std::vector<int> pulses;
    for (const auto& play : machine.plays())
        pulses.push_back(play.effect.u.rumble.weak_magnitude);
    return pulses;
}

TEST(HapticDeviceTest, EachPatternPlaysItsOwnEffect) {
    FakeForceFeedback machine;
    machine.plug({.node = rumble(1)});
    const auto device = HapticDevice::openBest(machine);
    ASSERT_NE(device, nullptr);
    for (const auto pattern : patterns)
        EXPECT_TRUE(device->play(pattern));
    EXPECT_THAT(weakPulses(machine), ElementsAre(0x6000, 0x9000, 0x4000));
    EXPECT_EQ(machine.uploads(), 3);
}

TEST(HapticDeviceTest, ADeviceWithRoomForOneEffectPlaysTheStartupEffectForAllPatterns) {
    FakeForceFeedback machine;
    machine.plug({.node = rumble(1), .room = 1});
    const auto device = HapticDevice::openBest(machine);
    ASSERT_NE(device, nullptr);
    for (const auto pattern : patterns)
        EXPECT_TRUE(device->play(pattern));
    EXPECT_THAT(weakPulses(machine), ElementsAre(0x9000, 0x9000, 0x9000));
}

TEST(HapticDeviceTest, ADeviceWithRoomForTwoEffectsPlaysEachForItsPattern) {
    FakeForceFeedback machine;
    machine.plug({.node = rumble(1), .room = 2});
    const auto device = HapticDevice::openBest(machine);
    ASSERT_NE(device, nullptr);
    for (const auto pattern : patterns)
        EXPECT_TRUE(device->play(pattern));
    EXPECT_THAT(weakPulses(machine), ElementsAre(0x9000, 0x9000, 0x4000));
}

TEST(HapticDeviceTest, ClosingErasesItsEffects) {
    FakeForceFeedback machine;
    machine.plug({.node = rumble(1)});
    auto device = HapticDevice::openBest(machine);
    EXPECT_EQ(machine.effectsOn("event1"), 3U);
    device.reset();
    EXPECT_EQ(machine.effectsOn("event1"), 0U);
    EXPECT_THAT(machine.opened(), IsEmpty());
}

TEST(HapticDeviceTest, ADeviceThatIsGoneReportsIt) {
    FakeForceFeedback machine;
    machine.plug({.node = rumble(1)});
    auto device = HapticDevice::openBest(machine);
    ASSERT_NE(device, nullptr);
    machine.unplug("event1");
    EXPECT_FALSE(device->play(HapticPattern::Generic));
    device.reset();
    EXPECT_THAT(machine.opened(), IsEmpty());
}

} // namespace

} // namespace quorvane
