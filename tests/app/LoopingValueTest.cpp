#include "app/LoopingValue.h"

#include <gmock/gmock.h>

#include "platform/simulated/SimulatedRunLoop.h"

namespace quorvane {
namespace {

using testing::DoubleNear;

constexpr Animation forEver = Animation::easeInOut(1.5).repeatForever(/*reversing=*/true);
constexpr double exact = 1e-6;

class LoopingValueTest : public testing::Test {
protected:
    void begin() { m_source = {.value = 1, .animation = forEver}; }

    SimulatedRunLoop m_runLoop;
    Observable<AnimatedValue> m_source;
    int m_changes = 0;
    LoopingValue m_value{m_source, m_runLoop, [this] { ++m_changes; }};
};

TEST_F(LoopingValueTest, RestsBeforeItIsAnimated) {
    m_value.setSeen(true);
    m_runLoop.advance(5);
    EXPECT_EQ(m_value.get(), 0);
    EXPECT_EQ(m_changes, 0);
    EXPECT_EQ(m_runLoop.pendingCount(), 0U);
}

TEST_F(LoopingValueTest, GoesUpAndDownForEver) {
    m_value.setSeen(true);
    begin();
    EXPECT_THAT(m_value.get(), DoubleNear(0, exact));
    for (int round = 0; round < 10; ++round) {
        m_runLoop.advance(0.5);
        EXPECT_THAT(m_value.get(), DoubleNear(0.231775, exact));
        m_runLoop.advance(1);
        EXPECT_THAT(m_value.get(), DoubleNear(1, exact));
        m_runLoop.advance(0.5);
        EXPECT_THAT(m_value.get(), DoubleNear(0.768225, exact));
        m_runLoop.advance(1);
        EXPECT_THAT(m_value.get(), DoubleNear(0, exact));
    }
}

TEST_F(LoopingValueTest, GoesUpAndDownAfter400DaysToo) {
    m_value.setSeen(true);
    begin();
    // A whole number of rounds of 3 s.
    m_runLoop.block(400 * 86400);
    m_runLoop.advance(0.5);
    EXPECT_THAT(m_value.get(), DoubleNear(0.231775, exact));
    m_runLoop.advance(2);
    EXPECT_THAT(m_value.get(), DoubleNear(0.231775, exact));
    m_changes = 0;
    m_runLoop.advance(1);
    EXPECT_EQ(m_changes, 30);
}

TEST_F(LoopingValueTest, IsEvaluatedThirtyTimesASecond) {
    m_value.setSeen(true);
    begin();
    m_changes = 0;
    m_runLoop.advance(1.4999);
    EXPECT_EQ(m_changes, 44);
}

TEST_F(LoopingValueTest, HasNoTimerWhileUnseenAndTheRightValueAfterwards) {
    begin();
    m_runLoop.advance(0.7);
    EXPECT_EQ(m_runLoop.pendingCount(), 0U);
    m_value.setSeen(true);
    m_runLoop.advance(0.8);
    EXPECT_THAT(m_value.get(), DoubleNear(1, exact));
    m_value.setSeen(false);
    EXPECT_EQ(m_runLoop.pendingCount(), 0U);
    const int before = m_changes;
    m_runLoop.advance(100);
    EXPECT_EQ(m_changes, before);
}

TEST_F(LoopingValueTest, AtRestIsWhereItWasSet) {
    m_value.setSeen(true);
    begin();
    m_runLoop.advance(0.4);
    m_value.setAtRest(true);
    EXPECT_EQ(m_value.get(), 1);
    EXPECT_EQ(m_runLoop.pendingCount(), 0U);
    m_value.setAtRest(false);
    EXPECT_THAT(m_value.get(), DoubleNear(0.147411, exact));
    EXPECT_EQ(m_runLoop.pendingCount(), 1U);
}

TEST(LoopingValue, EndsItsTimerWithItself) {
    SimulatedRunLoop runLoop;
    Observable<AnimatedValue> source;
    {
        LoopingValue value(source, runLoop, [] {});
        value.setSeen(true);
        source = {.value = 1, .animation = forEver};
        ASSERT_EQ(runLoop.pendingCount(), 1U);
    }
    EXPECT_EQ(runLoop.pendingCount(), 0U);
    runLoop.advance(1);
}

} // namespace
} // namespace quorvane
