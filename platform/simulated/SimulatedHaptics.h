#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "platform/Haptics.h"
#include "platform/RunLoop.h"
#include "platform/simulated/Faults.h"

namespace quorvane {

/// A trackpad that records its pulses.
class SimulatedHaptics final : public HapticService {
public:
    struct Pulse {
        /// Media time.
        double at = 0;
        HapticPattern pattern = HapticPattern::Generic;
        HapticPerformanceTime time = HapticPerformanceTime::Now;
    };

    explicit SimulatedHaptics(RunLoop& runLoop,
                              std::shared_ptr<Faults> faults = std::make_shared<Faults>())
        : m_runLoop(runLoop), m_faults(std::move(faults)) {}

    [[nodiscard]] std::shared_ptr<HapticPerformer> defaultPerformer() override;

    /// Number of calls of `defaultPerformer`.
    [[nodiscard]] int lookups() const { return m_lookups; }

    /// Number of performers that exist.
    [[nodiscard]] long performersInUse() const;

    [[nodiscard]] const std::vector<Pulse>& pulses() const { return *m_pulses; }

    void forgetPulses() { m_pulses->clear(); }

private:
    RunLoop& m_runLoop;
    std::shared_ptr<Faults> m_faults;
    int m_lookups = 0;
    std::shared_ptr<std::vector<Pulse>> m_pulses = std::make_shared<std::vector<Pulse>>();
    std::vector<std::weak_ptr<HapticPerformer>> m_performers;
};

} // namespace quorvane
