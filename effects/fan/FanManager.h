#pragma once

#include <memory>

#include "base/EffectManager.h"
#include "platform/Platform.h"

namespace quorvane {

/// An overworked fan: a looping sound and trackpad pulses. Main thread only; owned through a shared
/// pointer. The owner must call `stop` before it drops the manager, or the pulses continue, since
/// the run loop keeps their timer.
class FanManager final : public EffectManager {
public:
    /// Loads the sound.
    [[nodiscard]] static std::shared_ptr<FanManager> create(const Platform& platform);
    ~FanManager() override;

    /// Starts the sound from its beginning, and the pulses. Does nothing without a sound.
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
