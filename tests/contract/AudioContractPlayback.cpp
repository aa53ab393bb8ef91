#include "tests/contract/AudioContract.h"

#include <atomic>

namespace quorvane {
namespace {

using ::testing::ElementsAre;
using ::testing::Not;

TEST_P(AudioContract, CompletesOnceWhenTheBufferHasPlayedToItsEnd) {
    start();
    schedule("a", 0.4);
    EXPECT_THAT(secondsPlayed(1), isAbout(0.4));
    passTolerance();
    EXPECT_THAT(completed(), ElementsAre("a"));
}

TEST_P(AudioContract, CompletesFromAnotherThread) {
    start();
    schedule("ends", 0.05);
    m_node->play();
    secondsUntilCompleted(1);
    schedule("stopped", 5);
    m_node->stop();
    secondsUntilCompleted(2);
    EXPECT_THAT(m_log->threads, ::testing::Each(Not(std::this_thread::get_id())));
}

TEST_P(AudioContract, NeverWaitsForACompletionInsideACall) {
    start();
    const auto gate = std::make_shared<std::mutex>();
    const auto done = std::make_shared<std::atomic<bool>>(false);
    {
        const std::lock_guard closed(*gate);
        m_node->scheduleBuffer(sound(5), BufferOptions::Once, [gate, done] {
            const std::lock_guard lock(*gate);
            *done = true;
        });
        m_node->play();
        m_node->stop();
        EXPECT_FALSE(*done);
    }
    secondsUntil([&] { return done->load(); });
}

TEST_P(AudioContract, ACompletionMayBeEmpty) {
    start();
    m_node->scheduleBuffer(sound(0.05), BufferOptions::Once, nullptr);
    schedule("after", 0.05);
    m_node->play();
    secondsUntilCompleted(1);
}

TEST_P(AudioContract, NothingSoundsBeforePlay) {
    start();
    schedule("a", 0.05);
    pass(0.05 + m_backend->tolerance());
    EXPECT_THAT(completed(), ElementsAre());
    EXPECT_THAT(secondsPlayed(1), isAbout(0.05));
}

TEST_P(AudioContract, ABufferMayBeScheduledBeforeTheEngineStarts) {
    schedule("a", 0.2);
    start();
    EXPECT_THAT(secondsPlayed(1), isAbout(0.2));
}

TEST_P(AudioContract, PauseKeepsThePlaceAndPlayResumesThere) {
    start();
    schedule("a", 0.6);
    m_node->play();
    pass(0.3);
    m_node->pause();
    pass(0.6 + m_backend->tolerance());
    EXPECT_THAT(completed(), ElementsAre());
    m_node->play();
    // The sleep may have been longer than 0.3 s.
    EXPECT_THAT(secondsUntilCompleted(1),
                ::testing::AllOf(::testing::Ge(0.3 - m_backend->tolerance()),
                                 ::testing::Le(0.3 + m_backend->tolerance())));
}

TEST_P(AudioContract, StopDropsWhatWasScheduledAndCompletesIt) {
    start();
    schedule("a", 5);
    schedule("b", 5);
    m_node->play();
    pass(0.05);
    m_node->stop();
    EXPECT_THAT(secondsUntilCompleted(2), isAbout(0));
    m_node->play();
    passTolerance();
    EXPECT_THAT(completed(), ElementsAre("a", "b"));
}

TEST_P(AudioContract, AfterStopASoundPlaysFromItsStart) {
    start();
    schedule("first", 0.5);
    m_node->play();
    pass(0.3);
    m_node->stop();
    secondsUntilCompleted(1);
    schedule("second", 0.5);
    EXPECT_THAT(secondsPlayed(2), isAbout(0.5));
}

TEST_P(AudioContract, StopRewindsWhatWasPaused) {
    start();
    schedule("first", 0.5);
    m_node->play();
    pass(0.3);
    m_node->pause();
    m_node->stop();
    secondsUntilCompleted(1);
    schedule("second", 0.5);
    EXPECT_THAT(secondsPlayed(2), isAbout(0.5));
}

TEST_P(AudioContract, BuffersPlayOneAfterTheOther) {
    start();
    schedule("a", 0.2);
    schedule("b", 0.3);
    const double first = secondsPlayed(1);
    EXPECT_THAT(first, isAbout(0.2));
    // The first completion may have been late.
    EXPECT_THAT(first + secondsUntilCompleted(2), isAbout(0.5));
    EXPECT_THAT(completed(), ElementsAre("a", "b"));
}

TEST_P(AudioContract, ANodeThatRanDryPlaysTheNextBufferAtOnce) {
    start();
    schedule("a", 0.05);
    m_node->play();
    secondsUntilCompleted(1);
    passTolerance();
    schedule("b", 0.2);
    EXPECT_THAT(secondsUntilCompleted(2), isAbout(0.2));
}

TEST_P(AudioContract, RepeatedCallsAreHarmless) {
    start();
    m_node->pause();
    m_node->stop();
    m_node->play();
    m_node->play();
    schedule("a", 0.3);
    m_node->play();
    m_node->pause();
    m_node->pause();
    m_node->play();
    secondsUntilCompleted(1);
    m_node->stop();
    m_node->stop();
    passTolerance();
    EXPECT_THAT(completed(), ElementsAre("a"));
}

INSTANTIATE_TEST_SUITE_P(Simulated, AudioContract, testing::Values(&makeSimulatedAudioBackend));
INSTANTIATE_TEST_SUITE_P(LinuxPulseAudio, AudioContract, testing::Values(&makePulseAudioBackend));
INSTANTIATE_TEST_SUITE_P(LinuxPipeWire, AudioContract, testing::Values(&makePipeWireBackend));

} // namespace
} // namespace quorvane
