#include "app/screens/bridge/SpringValue.h"

#include <gmock/gmock.h>
#include <memory>

namespace quorvane {
namespace {

constexpr double exact = 1e-6;

AnimatedNumber at(double value) {
    return {{.value = value, .animation = {}}};
}

AnimatedNumber springTo(double value) {
    return {{.value = value, .animation = Animation::spring(0.4, 0.825)}};
}

class SpringValueTest : public testing::Test {
protected:
    SpringValueTest() {
        m_value.setGoal(at(0));
        QObject::connect(&m_value, &SpringValue::valueChanged, [this] { ++m_changes; });
    }

    SpringValue m_value;
    int m_changes = 0;
};

TEST_F(SpringValueTest, TakesItsFirstGoalAtOnceWhateverItsAnimation) {
    SpringValue value;
    value.setGoal(springTo(0.5));
    EXPECT_EQ(value.value(), 0.5);
    EXPECT_FALSE(value.isMoving());
}

TEST_F(SpringValueTest, MovesAsTheSpringOfItsGoal) {
    m_value.setGoal(springTo(1));
    EXPECT_EQ(m_value.value(), 0);
    EXPECT_EQ(m_value.target(), 1);
    EXPECT_TRUE(m_value.isMoving());
    m_changes = 0;
    m_value.setCurrentTime(100);
    EXPECT_NEAR(m_value.value(), 0.517425, exact);
    m_value.setCurrentTime(200);
    EXPECT_NEAR(m_value.value(), 0.908178, exact);
    m_value.setCurrentTime(400);
    EXPECT_NEAR(m_value.value(), 1.008402, exact) << "it overshoots";
    EXPECT_EQ(m_changes, 3);
}

TEST_F(SpringValueTest, KeepsItsValueAndVelocityForANewGoal) {
    m_value.setGoal(springTo(1));
    m_value.setCurrentTime(100);
    m_value.setGoal(springTo(0));
    EXPECT_NEAR(m_value.value(), 0.517425, exact);
    m_value.setCurrentTime(20);
    EXPECT_NEAR(m_value.value(), 0.586531, exact) << "still on its way up";
    m_value.setCurrentTime(100);
    EXPECT_NEAR(m_value.value(), 0.390753, exact);
}

TEST_F(SpringValueTest, RestsOnceNoDifferenceCanBeSeen) {
    m_value.setGoal(springTo(1));
    m_changes = 0;
    m_value.setCurrentTime(523);
    EXPECT_TRUE(m_value.isMoving());
    EXPECT_NE(m_value.value(), 1);
    m_value.setCurrentTime(524);
    EXPECT_FALSE(m_value.isMoving());
    EXPECT_EQ(m_value.value(), 1);
    EXPECT_EQ(m_changes, 2);
}

TEST_F(SpringValueTest, StartsFromRestAfterARest) {
    m_value.setGoal(springTo(1));
    m_value.setCurrentTime(600);
    m_value.setGoal(springTo(0));
    EXPECT_TRUE(m_value.isMoving());
    m_value.setCurrentTime(100);
    EXPECT_NEAR(m_value.value(), 1 - 0.517425, exact);
}

TEST_F(SpringValueTest, TakesAGoalWithoutASpringAtOnceEvenWhileMoving) {
    m_value.setGoal(springTo(1));
    m_value.setCurrentTime(100);
    m_value.setGoal(at(0.25));
    EXPECT_EQ(m_value.value(), 0.25);
    EXPECT_FALSE(m_value.isMoving());
    m_value.setGoal(springTo(1.25));
    m_value.setCurrentTime(100);
    EXPECT_NEAR(m_value.value(), 0.25 + 0.517425, exact) << "its speed is gone";
}

TEST_F(SpringValueTest, IgnoresTheGoalThatItHas) {
    m_value.setGoal(springTo(1));
    m_value.setCurrentTime(100);
    m_value.setGoal(springTo(1));
    EXPECT_TRUE(m_value.isMoving());
    EXPECT_EQ(m_value.currentTime(), 100);
    EXPECT_NEAR(m_value.value(), 0.517425, exact);
}

TEST_F(SpringValueTest, SignalsWhenItStartsAndStopsMoving) {
    std::vector<bool> moving;
    QObject::connect(&m_value, &SpringValue::movingChanged,
                     [&] { moving.push_back(m_value.isMoving()); });
    m_value.setGoal(springTo(1));
    m_value.setCurrentTime(600);
    EXPECT_THAT(moving, testing::ElementsAre(true, false));
}

// A screen may be destroyed while it fades in; a handler would then read a half-destroyed value.
TEST_F(SpringValueTest, EmitsNothingWhenDestroyedWhileMoving) {
    auto value = std::make_unique<SpringValue>();
    int changes = 0;
    QObject::connect(value.get(), &SpringValue::movingChanged, [&changes] { ++changes; });
    value->setGoal(at(0));
    value->setGoal(springTo(1));
    ASSERT_EQ(changes, 1);
    value.reset();
    EXPECT_EQ(changes, 1);
}

} // namespace
} // namespace quorvane
