#pragma once

#include <memory>

#include "base/EffectManager.h"
#include "platform/Platform.h"

namespace quorvane {

/// An overworked fan: its sound without end, and a trackpad that buzzes with it. Main thread only;
/// owned through a shared pointer. Its owner calls `stop` before letting go of it: the buzzing
/// belongs to the run loop and would go on.
class FanManager final : public EffectManager {
public:
    /// Loads the sound.
    [[nodiscard]] static std::shared_ptr<FanManager> create(const Platform& platform);
    ~FanManager() override;

    /// From the beginning of the sound. Without a sound there is no buzzing either.
    void start() override;
    void stop() override;

    [[nodiscard]] const Observable<bool>& isActive() const override { return m_isActive; }

private:
    explicit FanManager(const Platform& platform);
    void loadSound();
    void startHaptics();

    Platform m_platform;
    Observable<bool> m_isActive;
    std::shared_ptr<AudioFilePlayer> m_player;
    std::shared_ptr<Timer> m_hapticTimer;
};

} // namespace quorvane
