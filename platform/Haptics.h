#pragma once

#include <memory>

#include "base/NonCopyable.h"

namespace quorvane {

/// What a pulse is to feel like.
enum class HapticPattern { Generic = 0, Alignment = 1, LevelChange = 2 };

/// When a pulse is to be felt.
enum class HapticPerformanceTime { Default = 0, Now = 1, DrawCompleted = 2 };

/// Lets the trackpad pulse. Where there is nothing that can, requests are ignored. Main thread
/// only.
class HapticPerformer : NonCopyable {
public:
    virtual ~HapticPerformer() = default;

    /// One pulse. Never waits.
    virtual void performFeedback(HapticPattern pattern, HapticPerformanceTime time) = 0;
};

/// Where performers come from. Opens nothing by itself.
class HapticService : NonCopyable {
public:
    virtual ~HapticService() = default;

    /// The performer of the device that is best suited now; never null, and cheap enough to be
    /// asked for at every pulse. What it has opened is closed within two seconds of its last
    /// reference and the last time that it was asked for.
    [[nodiscard]] virtual std::shared_ptr<HapticPerformer> defaultPerformer() = 0;
};

} // namespace quorvane
