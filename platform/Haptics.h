#pragma once

#include <memory>

#include "base/NonCopyable.h"

namespace quorvane {

/// What a pulse feels like.
enum class HapticPattern { Generic = 0, Alignment = 1, LevelChange = 2 };

/// When a pulse is felt.
enum class HapticPerformanceTime { Default = 0, Now = 1, DrawCompleted = 2 };

/// Performs pulses on the trackpad; ignores requests if there is no such device. Main thread only.
class HapticPerformer : NonCopyable {
public:
    virtual ~HapticPerformer() = default;

    /// One pulse. Does not block.
    virtual void performFeedback(HapticPattern pattern, HapticPerformanceTime time) = 0;
};

/// Provides performers. Opens nothing itself. Main thread only.
class HapticService : NonCopyable {
public:
    virtual ~HapticService() = default;

    /// The performer of the best device at present; never null, and cheap enough to call for every
    /// pulse. Its device is closed within 2 s of the last call and of the performer's last
    /// reference.
    [[nodiscard]] virtual std::shared_ptr<HapticPerformer> defaultPerformer() = 0;
};

} // namespace quorvane
