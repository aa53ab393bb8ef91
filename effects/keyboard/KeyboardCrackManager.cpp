#include "effects/keyboard/KeyboardCrackManager.h"

#include <utility>

#include "base/MainThread.h"

namespace quorvane {

namespace {

constexpr float crackVolume = 0.5F;

// Seconds.
constexpr double minInterval = 0.15;
constexpr double retryDelay = 3.0;
// After this long without a key the output may sleep.
constexpr double holdDuration = 15 * 60;

} // namespace

std::weak_ptr<KeyboardCrackManager> KeyboardCrackManager::shared;

std::shared_ptr<KeyboardCrackManager> KeyboardCrackManager::create(const Platform& platform) {
    auto manager = makeMainThreadOwned(platform.runLoop, std::unique_ptr<KeyboardCrackManager>(
                                                             new KeyboardCrackManager(platform)));
    shared = manager;
    return manager;
}

KeyboardCrackManager::KeyboardCrackManager(const Platform& platform) : m_platform(platform) {
    loadSound();
}

KeyboardCrackManager::~KeyboardCrackManager() {
    requireMainThread(m_platform.runLoop, "KeyboardCrackManager");
    KeyboardCrackManager::stop();
}

void KeyboardCrackManager::loadSound() {
    const auto url = m_platform.bundle.urlForResource("keyboard", "mp3");
    if (!url) {
        m_platform.console.print("⚠️ [KEYBOARD] keyboard.mp3 not found");
        return;
    }
    const auto created = m_platform.audio.createFilePlayer(*url);
    if (const auto* player = std::get_if<std::shared_ptr<AudioFilePlayer>>(&created)) {
        m_player = *player;
        m_player->prepareToPlay();
        m_player->setVolume(crackVolume);
    }
    // Also when there is no player: the line says that the file was found.
    m_platform.console.print("✅ [KEYBOARD] keyboard.mp3 loaded");
}

void KeyboardCrackManager::start() {
    if (m_isActive || !m_player || !m_player->hasSound())
        return;
    m_hasPermission = m_platform.accessibility.isProcessTrusted();
    if (m_hasPermission) {
        startEventTap();
        return;
    }
    requestPermission();
    ++m_pendingRetries;
    m_platform.runLoop.asyncAfter(retryDelay, [weak = weak_from_this()] {
        if (const auto manager = weak.lock())
            manager->retry();
    });
}

void KeyboardCrackManager::requestPermission() {
    m_hasPermission = m_platform.accessibility.isProcessTrustedWithOptions(/*prompt=*/true);
}

void KeyboardCrackManager::retry() {
    --m_pendingRetries;
    if (m_isActive)
        return;
    m_hasPermission = m_platform.accessibility.isProcessTrusted();
    if (m_hasPermission)
        startEventTap();
}

void KeyboardCrackManager::startEventTap() {
    auto tap = m_platform.eventTaps.createTap(
        TapLocation::Session, TapPlacement::HeadInsert, TapOptions::ListenOnly,
        tapEventMask(TapEventType::KeyDown), &KeyboardCrackManager::handleTapEvent);
    if (!tap) {
        m_platform.console.print("⚠️ [KEYBOARD] Failed to create event tap — no permission?");
        return;
    }
    m_eventTap = std::move(tap);
    m_runLoopSource = m_eventTap->createRunLoopSource(0);
    if (m_runLoopSource) {
        m_runLoopSource->addToRunLoop();
        m_eventTap->enable(true);
    }
    holdOutput();
    m_isActive = true;
    m_hasPermission = true;
    m_platform.console.print("⌨️ [KEYBOARD] Event tap started — global monitoring active");
}

/// Must return fast: macOS disables a slow tap. A disabled tap is not enabled again.
const TapEvent& KeyboardCrackManager::handleTapEvent(const TapEvent& event) {
    const auto manager = shared.lock();
    if (manager && event.type == TapEventType::KeyDown && event.keyboardAutorepeat == 0) {
        manager->m_platform.runLoop.async([] {
            if (const auto current = shared.lock())
                current->playCrack();
        });
    }
    return event;
}

void KeyboardCrackManager::playCrack() {
    if (!m_player)
        return;
    // A key from just before the stop still cracks.
    if (m_isActive)
        holdOutput();
    const double now = m_platform.runLoop.currentMediaTime();
    if (now - m_lastPlayTime < minInterval)
        return;
    m_lastPlayTime = now;
    m_player->setCurrentTime(0);
    m_player->play();
}

/// Begins the hold, or prolongs it.
void KeyboardCrackManager::holdOutput() {
    if (!m_outputHold)
        m_outputHold = m_platform.audio.holdOutput();
    invalidate(m_holdTimer);
    m_holdTimer =
        m_platform.runLoop.scheduledTimer(holdDuration, false, [weak = weak_from_this()](Timer&) {
            if (const auto manager = weak.lock())
                manager->m_outputHold.reset();
        });
}

void KeyboardCrackManager::stop() {
    if (m_eventTap)
        m_eventTap->enable(false);
    if (m_runLoopSource)
        m_runLoopSource->removeFromRunLoop();
    m_eventTap.reset();
    m_runLoopSource.reset();
    invalidate(m_holdTimer);
    m_outputHold.reset();
    m_isActive = false;
    m_platform.accessibility.withdrawPrompt();
}

std::string KeyboardCrackManager::obstacle() {
    // Permission that came in time needs nothing more from the user: the retry starts the tap.
    if (!m_isActive && m_pendingRetries > 0 && m_platform.accessibility.isProcessTrusted())
        return {};
    return m_platform.accessibility.obstacle();
}

} // namespace quorvane
