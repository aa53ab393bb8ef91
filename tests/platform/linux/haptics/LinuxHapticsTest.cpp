#include <chrono>
#include <gmock/gmock.h>
#include <memory>
#include <string>

#include "platform/linux/haptics/LinuxHaptics.h"
#include "tests/support/FakeForceFeedback.h"
#include "tests/support/NoThreads.h"
#include "tests/support/QtApplication.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class LinuxHapticsTest : public testing::Test {
protected:
    void plugRumble(int number) {
        m_machine->plug({.node = {.node = "event" + std::to_string(number),
                                  .number = number,
                                  .kind = HapticKind::Rumble}});
    }

    static void pulse(HapticPerformer& performer) {
        performer.performFeedback(HapticPattern::Alignment, HapticPerformanceTime::Now);
    }

    [[nodiscard]] std::size_t pulses() const { return m_machine->plays().size(); }

    /// Sends pulses until one is played.
    [[nodiscard]] bool isFelt(HapticPerformer& performer) const {
        const auto before = pulses();
        return waitUntil([&] {
            pulse(performer);
            return pulses() > before;
        });
    }

    /// Waits until no device is open.
    [[nodiscard]] bool isClosed() const {
        return waitUntil([&] { return m_machine->opened().empty(); });
    }

    QtApplication m_application;
    std::shared_ptr<FakeForceFeedback> m_machine = std::make_shared<FakeForceFeedback>();
    LinuxHaptics m_haptics{m_machine};
};

TEST_F(LinuxHapticsTest, NothingIsOpenedBeforeAPerformerIsAskedFor) {
    plugRumble(1);
    waitFor(50ms);
    EXPECT_EQ(m_machine->timesListed(), 0);
    EXPECT_THAT(m_machine->opened(), IsEmpty());
}

TEST_F(LinuxHapticsTest, DevicesAreOpenedOnceForAllPerformers) {
    plugRumble(1);
    ASSERT_TRUE(isFelt(*m_haptics.defaultPerformer()));
    const auto before = pulses();
    for (int i = 0; i < 20; ++i) {
        pulse(*m_haptics.defaultPerformer());
        waitFor(1ms);
    }
    EXPECT_EQ(pulses(), before + 20);
    EXPECT_EQ(m_machine->timesListed(), 1);
    EXPECT_EQ(m_machine->uploads(), 3);
    EXPECT_THAT(m_machine->opened(), ElementsAre("event1"));
}

TEST_F(LinuxHapticsTest, ADeviceIsErasedAndClosedSoonAfterItsLastUse) {
    using Clock = std::chrono::steady_clock;
    plugRumble(1);
    ASSERT_TRUE(isFelt(*m_haptics.defaultPerformer()));
    const auto last = Clock::now();
    ASSERT_TRUE(isClosed());
    // It takes 1.5 s; more on a busy machine.
    EXPECT_GT(Clock::now() - last, std::chrono::milliseconds(500));
    EXPECT_LT(Clock::now() - last, std::chrono::seconds(3));
    EXPECT_EQ(m_machine->effectsOn("event1"), 0U);
    ASSERT_TRUE(isFelt(*m_haptics.defaultPerformer()));
    EXPECT_EQ(m_machine->timesListed(), 2);
}

TEST_F(LinuxHapticsTest, ADeviceIsOpenWhileItsPerformerIsHeld) {
    plugRumble(1);
    const auto performer = m_haptics.defaultPerformer();
    ASSERT_TRUE(isFelt(*performer));
    waitFor(2500ms);
    pulse(*performer);
    EXPECT_EQ(pulses(), 2U);
    EXPECT_EQ(m_machine->timesListed(), 1);
}

TEST_F(LinuxHapticsTest, TwoUsersShareOneDevice) {
    plugRumble(1);
    const auto first = m_haptics.defaultPerformer();
    const auto second = m_haptics.defaultPerformer();
    ASSERT_TRUE(isFelt(*first));
    const auto before = pulses();
    pulse(*first);
    pulse(*second);
    EXPECT_EQ(pulses(), before + 2);
    EXPECT_EQ(m_machine->uploads(), 3);
}

TEST_F(LinuxHapticsTest, TheDestructorErasesEffectsAndClosesDevices) {
    plugRumble(1);
    auto haptics = std::make_unique<LinuxHaptics>(m_machine);
    const auto performer = haptics->defaultPerformer();
    ASSERT_TRUE(isFelt(*performer));
    haptics.reset();
    EXPECT_THAT(m_machine->opened(), IsEmpty());
    EXPECT_EQ(m_machine->effectsOn("event1"), 0U);
    pulse(*performer);
    EXPECT_EQ(pulses(), 1U);
}

TEST_F(LinuxHapticsTest, WithoutAThreadRequestsAreIgnoredAndTheDeviceIsClosedAllTheSame) {
    plugRumble(1);
    auto haptics = std::make_unique<LinuxHaptics>(m_machine);
    ASSERT_TRUE(isFelt(*haptics->defaultPerformer()));
    const auto before = pulses();
    const NoThreads noThreads;
    testing::internal::CaptureStderr();
    pulse(*m_haptics.defaultPerformer());
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "quorvane: the thread \"haptics\" cannot be started: Resource temporarily "
              "unavailable\n");
    EXPECT_EQ(pulses(), before);
    haptics.reset();
    EXPECT_THAT(m_machine->opened(), IsEmpty());
}

TEST_F(LinuxHapticsTest, WithoutDevicesRequestsAreIgnoredAndDevicesListedOnce) {
    for (int i = 0; i < 20; ++i) {
        pulse(*m_haptics.defaultPerformer());
        waitFor(1ms);
    }
    EXPECT_EQ(m_machine->timesListed(), 1);
    EXPECT_EQ(pulses(), 0U);
}

TEST_F(LinuxHapticsTest, ALaterDeviceIsFoundOnceTheLastPerformerIsGone) {
    pulse(*m_haptics.defaultPerformer());
    ASSERT_TRUE(waitUntil([&] { return m_machine->timesListed() == 1; }));
    plugRumble(1);
    bool isFound = false;
    for (int tries = 0; tries < 5 && !isFound; ++tries) {
        waitFor(2000ms);
        pulse(*m_haptics.defaultPerformer());
        isFound = waitUntil([&] { return m_machine->timesListed() == 2; }, 300ms);
    }
    ASSERT_TRUE(isFound);
    EXPECT_TRUE(isFelt(*m_haptics.defaultPerformer()));
}

TEST_F(LinuxHapticsTest, ADeviceThatVanishesIsDroppedAndTheNextPerformerTakesAnother) {
    plugRumble(1);
    plugRumble(2);
    const auto performer = m_haptics.defaultPerformer();
    ASSERT_TRUE(isFelt(*performer));
    m_machine->unplug("event1");
    pulse(*performer);
    EXPECT_TRUE(isClosed());
    pulse(*performer);
    EXPECT_EQ(pulses(), 1U);
    ASSERT_TRUE(isFelt(*m_haptics.defaultPerformer()));
    EXPECT_EQ(m_machine->plays().back().node, "event2");
}

TEST_F(LinuxHapticsTest, ADeviceThatIsSlowToTakeItsEffectsBlocksNothing) {
    plugRumble(1);
    m_machine->blockUploads();
    const auto performer = m_haptics.defaultPerformer();
    for (int i = 0; i < 10; ++i) {
        pulse(*performer);
        waitFor(5ms);
    }
    EXPECT_EQ(pulses(), 0U);
    m_machine->unblockUploads();
    EXPECT_TRUE(isFelt(*performer));
}

TEST_F(LinuxHapticsTest, ADeviceThatNeverAnswersDoesNotBlockTheDestructor) {
    using Clock = std::chrono::steady_clock;
    plugRumble(1);
    m_machine->blockUploads();
    auto haptics = std::make_unique<LinuxHaptics>(m_machine);
    pulse(*haptics->defaultPerformer());
    ASSERT_TRUE(waitUntil([&] { return !m_machine->opened().empty(); }));
    const auto start = Clock::now();
    haptics.reset();
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(3));
    m_machine->unblockUploads();
    EXPECT_TRUE(isClosed());
}

} // namespace

} // namespace quorvane
