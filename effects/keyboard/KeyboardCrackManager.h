#pragma once

#include <memory>
#include <string>

#include "base/EffectManager.h"
#include "platform/Platform.h"

namespace quorvane {

/// Plays a crack at every key press in the session, at most one in 0.15 s. Does not learn which key
/// it was. Main thread only; owned through a shared pointer.
class KeyboardCrackManager final : public EffectManager,
                                   public std::enable_shared_from_this<KeyboardCrackManager> {
public:
    /// The latest instance: the tap's callback has no context argument, so it finds its manager
    /// here. Each new instance replaces it; a destructor leaves it alone. Weak, so that the
    /// instance ends with its owner and not, with the services gone, at the end of the process.
    static std::weak_ptr<KeyboardCrackManager> shared;

    /// Loads the sound and becomes `shared`.
    [[nodiscard]] static std::shared_ptr<KeyboardCrackManager> create(const Platform& platform);
    ~KeyboardCrackManager() override;

    /// Starts the tap. Without permission, shows the system's prompt, and retries once after 3 s,
    /// even if `stop` is called meanwhile. Does nothing without a sound.
    void start() override;
    /// Also takes away a prompt that is still shown.
    void stop() override;

    /// Whether the tap is installed; true even if its source could not be made.
    [[nodiscard]] const Observable<bool>& isActive() const override { return m_isActive; }

    [[nodiscard]] Observable<bool>* hasPermission() override { return &m_hasPermission; }

    [[nodiscard]] std::string obstacle() override;

    /// Plays one crack, cutting the previous one short; silent less than 0.15 s after the last.
    /// While the tap is installed, keeps the output ready for another 15 minutes.
    void playCrack();

private:
    explicit KeyboardCrackManager(const Platform& platform);
    void loadSound();
    void requestPermission();
    void retry();
    void startEventTap();
    void holdOutput();
    static const TapEvent& handleTapEvent(const TapEvent& event);

    Platform m_platform;
    Observable<bool> m_isActive;
    Observable<bool> m_hasPermission;
    int m_pendingRetries = 0;
    std::shared_ptr<EventTap> m_eventTap;
    std::shared_ptr<TapSource> m_runLoopSource;
    std::shared_ptr<AudioFilePlayer> m_player;
    // Media time.
    double m_lastPlayTime = 0;
    // Keeps the output device running, so that the first crack after a pause is not late, until the
    // timer fires.
    std::shared_ptr<AudioOutputHold> m_outputHold;
    std::shared_ptr<Timer> m_holdTimer;
};

} // namespace quorvane
