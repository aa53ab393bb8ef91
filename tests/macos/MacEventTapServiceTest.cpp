#include "platform/macos/MacEventTapService.h"
#include "tests/macos/FakeMachine.h"

namespace quorvane {

namespace {

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::NotNull;

constexpr auto keyDown = static_cast<std::uint32_t>(TapEventType::KeyDown);
constexpr auto timeout = static_cast<std::uint32_t>(TapEventType::DisabledByTimeout);

std::vector<TapEvent>& heard() {
    static std::vector<TapEvent> events;
    return events;
}

const TapEvent& hear(const TapEvent& event) {
    heard().push_back(event);
    return event;
}

class MacEventTapServiceTest : public testing::Test {
protected:
    MacEventTapServiceTest() { heard().clear(); }

    std::shared_ptr<EventTap> tap() {
        return m_taps.createTap(TapLocation::Session, TapPlacement::HeadInsert,
                                TapOptions::ListenOnly, tapEventMask(TapEventType::KeyDown), &hear);
    }

    FakeMachine m_machine;
    std::vector<std::string>& m_calls = fakes::machine().calls;
    MacEventTapService m_taps;
};

TEST_F(MacEventTapServiceTest, ATapIsMadeWithItsValuesAndListensInTheCommonModes) {
    auto tap = this->tap();
    auto source = tap->createRunLoopSource(0);
    source->addToRunLoop();
    tap->enable(true);
    tap->enable(false);
    source->removeFromRunLoop();
    EXPECT_THAT(m_calls, ElementsAre("CGEventTapCreate(1, 0, 1, 1024, callback, null)",
                                     "CGEventTapEnable(false)", "CFMachPortCreateRunLoopSource(0)",
                                     R"(CFRunLoopAddSource("kCFRunLoopCommonModes"))",
                                     "CGEventTapEnable(true)", "CGEventTapEnable(false)",
                                     R"(CFRunLoopRemoveSource("kCFRunLoopCommonModes"))"));
}

TEST_F(MacEventTapServiceTest, AnEventIsHeardAndReturnedUnchanged) {
    const auto tap = this->tap();
    const auto source = tap->createRunLoopSource(0);
    source->addToRunLoop();
    tap->enable(true);
    EXPECT_TRUE(fakes::deliver(keyDown, 0));
    EXPECT_TRUE(fakes::deliver(keyDown, 1));
    EXPECT_TRUE(fakes::deliver(timeout, 0));
    ASSERT_EQ(heard().size(), 3U);
    EXPECT_EQ(heard()[0].type, TapEventType::KeyDown);
    EXPECT_EQ(heard()[0].keyboardAutorepeat, 0);
    EXPECT_EQ(heard()[1].keyboardAutorepeat, 1);
    EXPECT_EQ(heard()[2].type, TapEventType::DisabledByTimeout);
}

TEST_F(MacEventTapServiceTest, ATapThatIsNotEnabledOrNotOnTheRunLoopHearsNothing) {
    const auto tap = this->tap();
    const auto source = tap->createRunLoopSource(0);
    source->addToRunLoop();
    fakes::deliver(keyDown, 0);
    tap->enable(true);
    source->removeFromRunLoop();
    fakes::deliver(keyDown, 0);
    EXPECT_EQ(fakes::deliveries(), 0);
}

TEST_F(MacEventTapServiceTest, ATapThatCannotBeMadeIsNull) {
    fakes::machine().tapsCanBeMade = false;
    EXPECT_EQ(tap(), nullptr);
}

TEST_F(MacEventTapServiceTest, ASourceThatCannotBeMadeIsNull) {
    fakes::machine().tapSourcesCanBeMade = false;
    EXPECT_EQ(tap()->createRunLoopSource(0), nullptr);
}

TEST_F(MacEventTapServiceTest, TheLastReferenceClosesTheTap) {
    auto tap = this->tap();
    auto source = tap->createRunLoopSource(0);
    source->addToRunLoop();
    tap->enable(true);
    tap.reset();
    EXPECT_EQ(fakes::openTaps(), 1);
    // Still on the run loop, which must not keep it alive.
    EXPECT_THAT(m_calls, Not(Contains("CFMachPortInvalidate")));
    source.reset();
    EXPECT_EQ(fakes::openTaps(), 0);
    EXPECT_THAT(fakes::leftOver(), IsEmpty());
    // The system may hold the port longer than we do.
    EXPECT_THAT(m_calls, Contains("CFMachPortInvalidate").Times(1));
    fakes::deliver(keyDown, 0);
    EXPECT_THAT(heard(), IsEmpty());
}

TEST_F(MacEventTapServiceTest, TheFifthTapFailsUntilAnotherOneIsDestroyed) {
    std::vector<std::shared_ptr<EventTap>> taps{tap(), tap(), tap(), tap()};
    EXPECT_THAT(taps, Each(NotNull()));
    EXPECT_EQ(tap(), nullptr);
    taps.erase(taps.begin());
    EXPECT_NE(tap(), nullptr);
}

} // namespace

} // namespace quorvane
