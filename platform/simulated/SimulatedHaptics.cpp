#include "platform/simulated/SimulatedHaptics.h"

#include <algorithm>
#include <utility>

namespace quorvane {

namespace {

class Performer final : public HapticPerformer {
public:
    Performer(RunLoop& runLoop, std::shared_ptr<Faults> faults,
              std::shared_ptr<std::vector<SimulatedHaptics::Pulse>> pulses)
        : m_runLoop(runLoop), m_faults(std::move(faults)), m_pulses(std::move(pulses)) {}

    void performFeedback(HapticPattern pattern, HapticPerformanceTime time) override {
        if (m_faults->fails(Fault::HapticPulse))
            return;
        m_pulses->push_back({.at = m_runLoop.currentMediaTime(), .pattern = pattern, .time = time});
    }

private:
    RunLoop& m_runLoop;
    std::shared_ptr<Faults> m_faults;
    std::shared_ptr<std::vector<SimulatedHaptics::Pulse>> m_pulses;
};

} // namespace

std::shared_ptr<HapticPerformer> SimulatedHaptics::defaultPerformer() {
    ++m_lookups;
    auto performer = std::make_shared<Performer>(m_runLoop, m_faults, m_pulses);
    std::erase_if(m_performers, [](const auto& weak) { return weak.expired(); });
    m_performers.push_back(performer);
    return performer;
}

long SimulatedHaptics::performersInUse() const {
    return std::count_if(m_performers.begin(), m_performers.end(),
                         [](const auto& performer) { return !performer.expired(); });
}

} // namespace quorvane
