#include "tests/contract/EventTapContract.h"

#include <utility>

#include <gmock/gmock.h>

namespace quorvane {

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr HeardEvent keyDown{TapEventType::KeyDown, false};
constexpr HeardEvent repeatedKeyDown{TapEventType::KeyDown, true};
constexpr HeardEvent keyUp{TapEventType::KeyUp, false};
constexpr HeardEvent flagsChanged{TapEventType::FlagsChanged, false};

// Global, because the callback has no context argument.
std::vector<HeardEvent> heardEvents;
int heardByAnother = 0;

const TapEvent& hear(const TapEvent& event) {
    heardEvents.push_back({.type = event.type, .isRepeat = event.keyboardAutorepeat != 0});
    return event;
}

const TapEvent& hearToo(const TapEvent& event) {
    ++heardByAnother;
    return event;
}

} // namespace

EventTapContract::EventTapContract() {
    heardEvents.clear();
    heardByAnother = 0;
}

std::shared_ptr<EventTap> EventTapContract::makeTap(std::uint64_t events) {
    return m_backend->service().createTap(TapLocation::Session, TapPlacement::HeadInsert,
                                          TapOptions::ListenOnly, events, &hear);
}

void EventTapContract::startToListen(std::uint64_t events) {
    m_tap = makeTap(events);
    ASSERT_TRUE(m_tap);
    m_source = m_tap->createRunLoopSource(0);
    ASSERT_TRUE(m_source);
    m_source->addToRunLoop();
    m_tap->enable(true);
}

void EventTapContract::typeKey() {
    m_backend->pressKey();
    m_backend->releaseKey();
}

std::vector<HeardEvent> EventTapContract::heard() {
    m_backend->settle();
    return std::exchange(heardEvents, {});
}

TEST_P(EventTapContract, AKeyThatGoesDownIsHeard) {
    startToListen();
    m_backend->pressKey();
    EXPECT_THAT(heard(), ElementsAre(keyDown));
    m_backend->releaseKey();
    EXPECT_THAT(heard(), IsEmpty());
}

TEST_P(EventTapContract, RepeatsOfAHeldKeyAreMarkedOrNotHeard) {
    startToListen();
    m_backend->pressKey();
    EXPECT_THAT(heard(), ElementsAre(keyDown));
    m_backend->repeatKey();
    m_backend->repeatKey();
    EXPECT_THAT(heard(), Each(repeatedKeyDown));
    m_backend->releaseKey();
    m_backend->pressKey();
    EXPECT_THAT(heard(), ElementsAre(keyDown));
    m_backend->releaseKey();
}

TEST_P(EventTapContract, AModifierAloneIsNoKey) {
    startToListen();
    m_backend->pressShift();
    m_backend->releaseShift();
    EXPECT_THAT(heard(), IsEmpty());
}

TEST_P(EventTapContract, AKeyWithAModifierIsAKey) {
    startToListen();
    m_backend->pressShift();
    typeKey();
    m_backend->releaseShift();
    EXPECT_THAT(heard(), ElementsAre(keyDown));
}

TEST_P(EventTapContract, ATapThatIsNotInterestedInKeysHearsNone) {
    startToListen(tapEventMask(TapEventType::FlagsChanged));
    typeKey();
    EXPECT_THAT(heard(), IsEmpty());
}

TEST_P(EventTapContract, EveryPressOfABurstIsHeard) {
    startToListen();
    for (int i = 0; i < 8; ++i)
        typeKey();
    EXPECT_THAT(heard(), SizeIs(8));
}

TEST_P(EventTapContract, ATapIsMadeDisabled) {
    const auto tap = makeTap();
    ASSERT_TRUE(tap);
    const auto source = tap->createRunLoopSource(0);
    source->addToRunLoop();
    typeKey();
    EXPECT_THAT(heard(), IsEmpty());
    tap->enable(true);
    typeKey();
    EXPECT_THAT(heard(), ElementsAre(keyDown));
}

TEST_P(EventTapContract, ATapThatIsDisabledHearsNothingUntilItIsEnabledAgain) {
    startToListen();
    m_tap->enable(false);
    typeKey();
    EXPECT_THAT(heard(), IsEmpty());
    m_tap->enable(true);
    EXPECT_THAT(heard(), IsEmpty());
    typeKey();
    EXPECT_THAT(heard(), ElementsAre(keyDown));
}

TEST_P(EventTapContract, ATapWithoutASourceHearsNothing) {
    const auto tap = makeTap();
    ASSERT_TRUE(tap);
    tap->enable(true);
    typeKey();
    EXPECT_THAT(heard(), IsEmpty());
}

TEST_P(EventTapContract, EventsAreLostWhileTheSourceIsNotOnTheRunLoop) {
    m_tap = makeTap();
    ASSERT_TRUE(m_tap);
    m_source = m_tap->createRunLoopSource(0);
    m_tap->enable(true);
    typeKey();
    EXPECT_THAT(heard(), IsEmpty());
    m_source->addToRunLoop();
    typeKey();
    EXPECT_THAT(heard(), ElementsAre(keyDown));
    m_source->removeFromRunLoop();
    typeKey();
    EXPECT_THAT(heard(), IsEmpty());
    m_source->addToRunLoop();
    EXPECT_THAT(heard(), IsEmpty());
    typeKey();
    EXPECT_THAT(heard(), ElementsAre(keyDown));
}

TEST_P(EventTapContract, AddingAndRemovingTwiceIsHarmless) {
    startToListen();
    m_source->addToRunLoop();
    typeKey();
    EXPECT_THAT(heard(), ElementsAre(keyDown));
    m_source->removeFromRunLoop();
    m_source->removeFromRunLoop();
    typeKey();
    EXPECT_THAT(heard(), IsEmpty());
}

TEST_P(EventTapContract, NothingIsHeardOnceTheTapIsReleased) {
    startToListen();
    m_tap.reset();
    typeKey();
    EXPECT_THAT(heard(), IsEmpty());
}

TEST_P(EventTapContract, NothingIsHeardOnceTheSourceIsReleased) {
    startToListen();
    m_source.reset();
    typeKey();
    EXPECT_THAT(heard(), IsEmpty());
}

TEST_P(EventTapContract, ASecondTapHearsAsTheFirstDid) {
    startToListen();
    m_tap.reset();
    m_source.reset();
    startToListen();
    typeKey();
    EXPECT_THAT(heard(), ElementsAre(keyDown));
}

TEST_P(EventTapContract, TwoTapsHearTheSameKey) {
    startToListen();
    const auto other = m_backend->service().createTap(
        TapLocation::Session, TapPlacement::HeadInsert, TapOptions::ListenOnly, keyDowns, &hearToo);
    ASSERT_TRUE(other);
    const auto source = other->createRunLoopSource(0);
    source->addToRunLoop();
    other->enable(true);
    typeKey();
    EXPECT_THAT(heard(), ElementsAre(keyDown));
    EXPECT_EQ(heardByAnother, 1);
}

TEST_P(EventKindsContract, AKeyGoesDownAndUp) {
    startToListen(everything);
    m_backend->pressKey();
    EXPECT_THAT(heard(), ElementsAre(keyDown));
    m_backend->releaseKey();
    EXPECT_THAT(heard(), ElementsAre(keyUp));
}

TEST_P(EventKindsContract, RepeatsOfAHeldKeyAreMarked) {
    startToListen();
    m_backend->pressKey();
    m_backend->repeatKey();
    m_backend->repeatKey();
    EXPECT_THAT(heard(), ElementsAre(keyDown, repeatedKeyDown, repeatedKeyDown));
    m_backend->releaseKey();
}

TEST_P(EventKindsContract, AModifierAloneChangesFlags) {
    startToListen(everything);
    m_backend->pressShift();
    m_backend->releaseShift();
    EXPECT_THAT(heard(), ElementsAre(flagsChanged, flagsChanged));
}

TEST_P(EventKindsContract, OnlyEventsOfInterestAreHeard) {
    startToListen(tapEventMask(TapEventType::KeyUp));
    m_backend->pressShift();
    typeKey();
    m_backend->releaseShift();
    EXPECT_THAT(heard(), ElementsAre(keyUp));
}

} // namespace quorvane
