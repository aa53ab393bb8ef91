#include "tests/contract/AudioContract.h"

namespace quorvane {
namespace {

using ::testing::ElementsAre;
using ::testing::Not;

TEST_P(AudioContract, ANodeMayBeDestroyedWhilePlaying) {
    start();
    schedule("a", 0.3);
    m_node->play();
    pass(0.05);
    m_node.reset();
    m_engine.reset();
    secondsUntilCompleted(1);
    pass(0.3 + m_backend->tolerance());
    EXPECT_THAT(completed(), ElementsAre("a"));
}

TEST_P(AudioContract, AnEngineMayBeDestroyedBeforeItsNode) {
    start();
    schedule("a", 5);
    m_node->play();
    m_engine.reset();
    secondsUntilCompleted(1);
    m_node->play();
    m_node->pause();
    m_node->stop();
    EXPECT_THAT(completed(), ElementsAre("a"));
}

TEST_P(AudioContract, AStoppedEngineIsSilentAndMayStartAgain) {
    start();
    EXPECT_TRUE(m_engine->isRunning());
    schedule("a", 5);
    m_node->play();
    m_engine->stop();
    EXPECT_FALSE(m_engine->isRunning());
    EXPECT_THAT(secondsUntilCompleted(1), isAbout(0));
    start();
    schedule("b", 0.2);
    EXPECT_THAT(secondsPlayed(2), isAbout(0.2));
}

TEST_P(AudioContract, OneEngineDoesNotStopAnother) {
    start();
    const auto other = audio().createEngine();
    EXPECT_FALSE(other->isRunning());
    ASSERT_FALSE(other->start());
    schedule("a", 0.4);
    m_node->play();
    other->stop();
    EXPECT_TRUE(m_engine->isRunning());
    EXPECT_THAT(secondsUntilCompleted(1), isAbout(0.4));
}

TEST_P(AudioContract, StartingWithoutAnOutputDeviceFailsUntilThereIsOne) {
    m_backend->setOutputDevicePresent(false);
    EXPECT_FALSE(m_engine->isRunning());
    for (int attempt = 0; attempt < 2; ++attempt) {
        const auto error = m_engine->start();
        ASSERT_TRUE(error);
        EXPECT_THAT(error->description, Not(::testing::IsEmpty()));
        EXPECT_FALSE(m_engine->isRunning());
    }
    m_backend->setOutputDevicePresent(true);
    start();
    schedule("a", 0.2);
    EXPECT_THAT(secondsPlayed(1), isAbout(0.2));
}

TEST_P(AudioContract, LosingTheDeviceStopsTheEngineAndCompletesWhatWasScheduled) {
    start();
    schedule("a", 5);
    schedule("b", 5);
    m_node->play();
    pass(0.1);
    m_backend->setOutputDevicePresent(false);
    secondsUntil([&] { return !m_engine->isRunning(); });
    secondsUntilCompleted(2);
    passTolerance();
    EXPECT_THAT(completed(), ElementsAre("a", "b"));
}

TEST_P(AudioContract, ALossIsNoticedWithoutAnyCall) {
    start();
    schedule("a", 60);
    m_node->play();
    pass(0.1);
    m_backend->setOutputDevicePresent(false);
    secondsUntilCompleted(1);
}

TEST_P(AudioContract, ALossWhilePausedCompletesWhatWasScheduled) {
    start();
    schedule("a", 5);
    m_node->play();
    pass(0.1);
    m_node->pause();
    m_backend->setOutputDevicePresent(false);
    secondsUntil([&] { return !m_engine->isRunning(); });
    EXPECT_THAT(secondsUntilCompleted(1), isAbout(0));
}

TEST_P(AudioContract, AfterALossTheNextStartOpensTheDeviceAgain) {
    start();
    schedule("lost", 5);
    m_node->play();
    m_backend->setOutputDevicePresent(false);
    secondsUntil([&] { return !m_engine->isRunning(); });
    EXPECT_TRUE(m_engine->start());
    m_backend->setOutputDevicePresent(true);
    start();
    secondsUntilCompleted(1);
    schedule("heard", 0.3);
    EXPECT_THAT(secondsPlayed(2), isAbout(0.3));
}

} // namespace
} // namespace quorvane
