#pragma once

#include <memory>
#include <vector>

#include "platform/Haptics.h"
#include "platform/RunLoop.h"

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

    explicit SimulatedHaptics(RunLoop& runLoop) : m_runLoop(runLoop) {}

    [[nodiscard]] std::shared_ptr<HapticPerformer> defaultPerformer() override;

    /// Number of calls of `defaultPerformer`.
    [[nodiscard]] int lookups() const { return m_lookups; }

    /// Number of performers that exist.
    [[nodiscard]] long performersInUse() const;

    [[nodiscard]] const std::vector<Pulse>& pulses() const { return *m_pulses; }

private:
    RunLoop& m_runLoop;
    int m_lookups = 0;
    std::shared_ptr<std::vector<Pulse>> m_pulses = std::make_shared<std::vector<Pulse>>();
    std::vector<std::weak_ptr<HapticPerformer>> m_performers;
};

} // namespace quorvane
