#include "effects/fan/FanManager.h"

#include "base/MainThread.h"

namespace quorvane {

namespace {

constexpr int untilStopped = -1;
constexpr float fanVolume = 0.6F;

// Seconds.
constexpr double hapticInterval = 0.05;

} // namespace

std::shared_ptr<FanManager> FanManager::create(const Platform& platform) {
    return makeMainThreadOwned(platform.runLoop,
                               std::unique_ptr<FanManager>(new FanManager(platform)));
}

FanManager::FanManager(const Platform& platform) : m_platform(platform) {
    loadSound();
}

FanManager::~FanManager() {
    requireMainThread(m_platform.runLoop, "FanManager");
}

void FanManager::loadSound() {
    const auto url = m_platform.bundle.urlForResource("fanmac", "mp3");
    if (!url) {
        m_platform.console.print("⚠️ [FAN] fanmac.mp3 not found");
        return;
    }
    const auto created = m_platform.audio.createFilePlayer(*url);
    if (const auto* player = std::get_if<std::shared_ptr<AudioFilePlayer>>(&created)) {
        m_player = *player;
        m_player->setNumberOfLoops(untilStopped);
        m_player->setVolume(fanVolume);
        m_player->prepareToPlay();
    }
    // Also when there is no player: the line says that the file was found.
    m_platform.console.print("✅ [FAN] fanmac.mp3 loaded");
}

void FanManager::start() {
    if (m_isActive || !m_player || !m_player->hasSound())
        return;
    m_player->setCurrentTime(0);
    m_player->play();
    startHaptics();
    m_isActive = true;
}

void FanManager::startHaptics() {
    // Looked up once, to keep the 20 Hz tick cheap.
    m_hapticTimer = m_platform.runLoop.scheduledTimer(
        hapticInterval, true, [performer = m_platform.haptics.defaultPerformer()](Timer&) {
            performer->performFeedback(HapticPattern::LevelChange, HapticPerformanceTime::Now);
            performer->performFeedback(HapticPattern::Generic, HapticPerformanceTime::Now);
        });
}

void FanManager::stop() {
    if (m_player)
        m_player->stop();
    invalidate(m_hapticTimer);
    m_isActive = false;
}

} // namespace quorvane
