#include <gmock/gmock.h>
#include <linux/input.h>
#include <memory>
#include <stdexcept>
#include <vector>

#include "platform/linux/haptics/LinuxHaptics.h"
#include "platform/simulated/SimulatedHaptics.h"
#include "platform/simulated/SimulatedRunLoop.h"
#include "tests/contract/Contract.h"
#include "tests/support/FakeForceFeedback.h"
#include "tests/support/QtApplication.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

using testing::ElementsAre;

class HapticsBackend : public ContractBackend {
public:
    virtual HapticService& service() = 0;
    /// A performer whose device is open, so that its pulses are played.
    virtual std::shared_ptr<HapticPerformer> readyPerformer() = 0;
    /// What was played since the performer was ready.
    virtual std::vector<HapticPattern> pulses() = 0;
};

class SimulatedBackend final : public HapticsBackend {
public:
    HapticService& service() override { return m_haptics; }

    std::shared_ptr<HapticPerformer> readyPerformer() override {
        return m_haptics.defaultPerformer();
    }

    std::vector<HapticPattern> pulses() override {
        std::vector<HapticPattern> patterns;
        for (const auto& pulse : m_haptics.pulses())
            patterns.push_back(pulse.pattern);
        return patterns;
    }

private:
    SimulatedRunLoop m_runLoop;
    SimulatedHaptics m_haptics{m_runLoop};
};

/// On a fake device.
class LinuxBackend final : public HapticsBackend {
public:
    LinuxBackend() {
        m_machine->plug({.node = {.node = "event0", .number = 0, .kind = HapticKind::Rumble}});
    }

    HapticService& service() override { return m_haptics; }

    std::shared_ptr<HapticPerformer> readyPerformer() override {
        auto performer = m_haptics.defaultPerformer();
        const bool isReady = waitUntil([&] {
            performer->performFeedback(HapticPattern::Generic, HapticPerformanceTime::Now);
            return !m_machine->plays().empty();
        });
        EXPECT_TRUE(isReady);
        m_before = m_machine->plays().size();
        return performer;
    }

    std::vector<HapticPattern> pulses() override {
        std::vector<HapticPattern> patterns;
        const auto plays = m_machine->plays();
        for (std::size_t i = m_before; i < plays.size(); ++i)
            patterns.push_back(patternOf(plays[i].effect));
        return patterns;
    }

private:
    /// The pattern with this strength of the weak motor.
    static HapticPattern patternOf(const ff_effect& effect) {
        switch (effect.u.rumble.weak_magnitude) {
        case 0x6000:
            return HapticPattern::Generic;
        case 0x9000:
            return HapticPattern::Alignment;
        case 0x4000:
            return HapticPattern::LevelChange;
        default:
            throw std::runtime_error("no pattern feels like this");
        }
    }

    QtApplication m_application;
    std::shared_ptr<FakeForceFeedback> m_machine = std::make_shared<FakeForceFeedback>();
    LinuxHaptics m_haptics{m_machine};
    std::size_t m_before = 0;
};

using HapticsContract = Contract<HapticsBackend>;

TEST_P(HapticsContract, ThereIsAlwaysAPerformer) {
    EXPECT_NE(m_backend->service().defaultPerformer(), nullptr);
    EXPECT_NE(m_backend->service().defaultPerformer(), nullptr);
}

TEST_P(HapticsContract, EachRequestIsOnePulseInOrder) {
    const auto performer = m_backend->readyPerformer();
    performer->performFeedback(HapticPattern::LevelChange, HapticPerformanceTime::Now);
    performer->performFeedback(HapticPattern::Generic, HapticPerformanceTime::Now);
    performer->performFeedback(HapticPattern::Alignment, HapticPerformanceTime::Default);
    performer->performFeedback(HapticPattern::Alignment, HapticPerformanceTime::DrawCompleted);
    EXPECT_THAT(m_backend->pulses(),
                ElementsAre(HapticPattern::LevelChange, HapticPattern::Generic,
                            HapticPattern::Alignment, HapticPattern::Alignment));
}

TEST_P(HapticsContract, AllPerformersPlayOnTheSameDevice) {
    const auto first = m_backend->readyPerformer();
    first->performFeedback(HapticPattern::Generic, HapticPerformanceTime::Now);
    m_backend->service().defaultPerformer()->performFeedback(HapticPattern::LevelChange,
                                                             HapticPerformanceTime::Now);
    first->performFeedback(HapticPattern::Alignment, HapticPerformanceTime::Now);
    EXPECT_THAT(m_backend->pulses(), ElementsAre(HapticPattern::Generic, HapticPattern::LevelChange,
                                                 HapticPattern::Alignment));
}

INSTANTIATE_TEST_SUITE_P(Simulated, HapticsContract, on<SimulatedBackend>());
INSTANTIATE_TEST_SUITE_P(Linux, HapticsContract, on<LinuxBackend>());

} // namespace

} // namespace quorvane
