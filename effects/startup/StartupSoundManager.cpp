#include "effects/startup/StartupSoundManager.h"

#include <algorithm>
#include <utility>

#include "base/FatalError.h"
#include "base/Format.h"
#include "base/MainThread.h"
#include "effects/startup/Rumble.h"

namespace quorvane {

namespace {

constexpr double rumbleSampleRate = 44100;
constexpr unsigned rumbleChannels = 1;
constexpr int rampSteps = 30;

// Seconds.
constexpr double loginBootDelay = 0.5;
constexpr double hapticInterval = 1 / hapticTickRate;

} // namespace

std::shared_ptr<StartupSoundManager> StartupSoundManager::create(const Platform& platform) {
    auto manager = makeMainThreadOwned(
        platform.runLoop, std::unique_ptr<StartupSoundManager>(new StartupSoundManager(platform)));
    manager->begin();
    return manager;
}

StartupSoundManager::StartupSoundManager(const Platform& platform)
    : m_platform(platform), m_rumbleEngine(platform.audio.createEngine()),
      m_rumblePlayer(platform.audio.createPlayerNode()) {}

/// The rest of the construction, which needs weak_from_this.
void StartupSoundManager::begin() {
    loadSound();
    connectRumble();
    observeWake();
    playOnLoginBoot();
}

StartupSoundManager::~StartupSoundManager() {
    requireMainThread(m_platform.runLoop, "StartupSoundManager");
    if (m_wakeObserver)
        m_platform.workspace.removeObserver(*m_wakeObserver);
    invalidate(m_hapticTimer);
    m_rumbleEngine->stop();
}

void StartupSoundManager::loadSound() {
    const auto url = m_platform.bundle.urlForResource("tractor", "mp3");
    if (!url)
        return;
    const auto created = m_platform.audio.createFilePlayer(*url);
    if (const auto* player = std::get_if<std::shared_ptr<AudioFilePlayer>>(&created)) {
        m_tractorPlayer = *player;
        m_tractorPlayer->prepareToPlay();
    }
    // Also when there is no player: the line says that the file was found.
    m_platform.console.print("✅ [STARTUP] tractor.mp3 loaded");
}

void StartupSoundManager::connectRumble() {
    m_rumbleEngine->attach(m_rumblePlayer);
    const auto format = m_platform.audio.standardFormat(rumbleSampleRate, rumbleChannels);
    if (!format)
        fatalError("StartupSoundManager: there is no format of one channel at 44100 Hz");
    m_rumbleEngine->connectToMainMixer(m_rumblePlayer, *format);
    generateRumbleBuffer(rumbleSampleRate, *format);
}

void StartupSoundManager::generateRumbleBuffer(double sampleRate, const AudioFormat& format) {
    const auto frames = rumbleFrameCount(sampleRate);
    if (!frames)
        fatalError("StartupSoundManager: the sample rate is no count of frames");
    auto buffer = m_platform.audio.createBuffer(format, *frames);
    if (!buffer || (*frames > 0 && buffer->samples.empty()))
        return;
    buffer->frameLength = *frames;
    for (std::uint32_t i = 0; i < *frames; ++i)
        buffer->samples[std::size_t{i} * format.channels] =
            static_cast<float>(rumbleSample(i / sampleRate, m_rumbleFrequency));
    m_rumbleBuffer = std::move(buffer);
    m_platform.console.print("✅ [RUMBLE] Buffer generated: " + formatDouble(m_rumbleFrequency) +
                             "Hz + " + formatDouble(m_rumbleFrequency * 0.5) + "Hz sub");
}

void StartupSoundManager::observeWake() {
    m_wakeObserver =
        m_platform.workspace.addObserver(WorkspaceNotification::didWake, [weak = weak_from_this()] {
            const auto manager = weak.lock();
            if (manager && manager->m_startupSoundEnabled)
                manager->playTractor();
        });
}

/// A program that is a login item, and not active shortly after its launch, is taken to have been
/// launched at login.
void StartupSoundManager::playOnLoginBoot() {
    if (m_platform.application.loginItemStatus() != LoginItemStatus::Enabled ||
        !m_startupSoundEnabled)
        return;
    m_platform.runLoop.asyncAfter(loginBootDelay, [weak = weak_from_this()] {
        const auto manager = weak.lock();
        if (manager && manager->m_startupSoundEnabled &&
            !manager->m_platform.application.isActive())
            manager->playTractor();
    });
}

void StartupSoundManager::playTractor() {
    if (!m_startupSoundEnabled || m_isPlayingTractor || !m_tractorPlayer ||
        !m_tractorPlayer->hasSound())
        return;
    m_isPlayingTractor = true;
    m_platform.console.print("🚜 [STARTUP] Playing tractor + rumble + haptic!");
    m_tractorPlayer->setCurrentTime(0);
    m_tractorPlayer->play();
    startRumble();
    startHaptic();
    m_platform.runLoop.asyncAfter(m_tractorPlayer->duration(),
                                  [weak = weak_from_this(), &console = m_platform.console] {
                                      if (const auto manager = weak.lock())
                                          manager->endSequence();
                                      console.print("🚜 [STARTUP] Sequence complete");
                                  });
}

void StartupSoundManager::endSequence() {
    stopRumble();
    stopHaptic();
    m_isPlayingTractor = false;
}

void StartupSoundManager::startRumble() {
    if (!m_rumbleBuffer)
        return;
    if (!m_rumbleEngine->isRunning()) {
        if (const auto error = m_rumbleEngine->start()) {
            m_platform.console.print("⚠️ [RUMBLE] Error: " + error->description);
            return;
        }
    }
    m_rumblePlayer->setVolume(0);
    m_rumblePlayer->scheduleBuffer(m_rumbleBuffer, BufferOptions::Loops, nullptr);
    m_rumblePlayer->play();
    startRamp();
    m_platform.console.print("🔊 [RUMBLE] Started with " + formatDouble(m_rampUpDuration) +
                             "s ramp-up");
}

void StartupSoundManager::startRamp() {
    m_rampTimer = m_platform.runLoop.scheduledTimer(
        m_rampUpDuration / rampSteps, true,
        [weak = weak_from_this(), step = 0,
         volumeStep = m_rumbleVolume / static_cast<float>(rampSteps)](Timer& timer) mutable {
            if (const auto manager = weak.lock())
                manager->stepRamp(timer, ++step, volumeStep);
            else
                timer.invalidate();
        });
}

void StartupSoundManager::stepRamp(Timer& timer, int step, float volumeStep) {
    m_rumblePlayer->setVolume(
        std::min(static_cast<float>(step) * volumeStep, m_rumbleVolume.get()));
    if (step < rampSteps)
        return;
    timer.invalidate();
    m_rampTimer.reset();
}

void StartupSoundManager::stopRumble() {
    invalidate(m_rampTimer);
    // The engine keeps running until the manager is destroyed.
    m_rumblePlayer->stop();
    m_platform.console.print("🔊 [RUMBLE] Stopped");
}

void StartupSoundManager::startHaptic() {
    m_hapticStartTime = m_platform.runLoop.currentDate();
    m_hapticTimer =
        m_platform.runLoop.scheduledTimer(hapticInterval, true, [weak = weak_from_this()](Timer&) {
            if (const auto manager = weak.lock())
                manager->pulse();
        });
    m_platform.console.print("📳 [HAPTIC] Started with ramp-up");
}

void StartupSoundManager::pulse() {
    if (!m_hapticStartTime)
        return;
    const double elapsed = m_platform.runLoop.currentDate() - *m_hapticStartTime;
    if (isHapticPulseDue(elapsed, hapticRate(elapsed, m_rampUpDuration)))
        m_platform.haptics.defaultPerformer()->performFeedback(HapticPattern::Alignment,
                                                               HapticPerformanceTime::Now);
}

void StartupSoundManager::stopHaptic() {
    invalidate(m_hapticTimer);
    m_platform.console.print("📳 [HAPTIC] Stopped");
}

} // namespace quorvane
