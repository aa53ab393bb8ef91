#include "effects/creak/AudioManager.h"

#include <cmath>
#include <limits>
#include <string>
#include <utility>

#include "base/FatalError.h"
#include "base/Format.h"
#include "base/MainThread.h"

namespace quorvane {

namespace {

/// A file's length as a buffer's capacity, in frames. Ends the program if it does not fit: no creak
/// is that long.
std::uint32_t requireFrameCount(std::int64_t length) {
    if (length < 0 || length > std::numeric_limits<std::uint32_t>::max())
        fatalError("AudioManager: a sound of " + std::to_string(length) + " frames fits no buffer");
    return static_cast<std::uint32_t>(length);
}

} // namespace

std::shared_ptr<AudioManager> AudioManager::create(const Platform& platform) {
    return makeMainThreadOwned(platform.runLoop,
                               std::unique_ptr<AudioManager>(new AudioManager(platform)));
}

AudioManager::AudioManager(const Platform& platform)
    : m_platform(platform), m_engine(platform.audio.createEngine()),
      m_playerNode(platform.audio.createPlayerNode()) {
    m_engine->attach(m_playerNode);
}

AudioManager::~AudioManager() {
    requireMainThread(m_platform.runLoop, "AudioManager");
    m_engine->stop();
}

void AudioManager::loadSound(std::string_view name, std::string_view extension) {
    if (const auto url = m_platform.bundle.urlForResource(name, extension)) {
        loadSound(*url);
        return;
    }
    m_platform.console.print("⚠️ Δεν βρέθηκε: " + std::string(name) + "." +
                             std::string(extension));
    m_isLoaded = false;
}

void AudioManager::loadSound(const std::filesystem::path& url) {
    const auto opened = m_platform.audio.openFile(url);
    if (const auto* error = std::get_if<AudioError>(&opened)) {
        failToLoad(*error);
        return;
    }
    AudioFile& file = *std::get<std::shared_ptr<AudioFile>>(opened);
    const AudioFormat format = file.processingFormat();
    const auto buffer = m_platform.audio.createBuffer(format, requireFrameCount(file.length()));
    if (!buffer) {
        m_isLoaded = false;
        return;
    }
    if (const auto error = file.read(*buffer)) {
        failToLoad(*error);
        return;
    }
    m_audioBuffer = buffer;
    m_engine->connectToMainMixer(m_playerNode, format);
    m_isLoaded = true;
    m_platform.console.print("✅ Φορτώθηκε: " + url.filename().string() + " (" +
                             formatOneDecimal(buffer->frameLength / format.sampleRate) + "s)");
}

void AudioManager::failToLoad(const AudioError& error) {
    m_platform.console.print("⚠️ Σφάλμα: " + error.description);
    m_isLoaded = false;
}

void AudioManager::update(double velocity) {
    if (!m_isLoaded)
        return;
    if (std::abs(velocity) >= m_velocityThreshold)
        creak();
    else if (m_isPlaying)
        pause();
}

void AudioManager::creak() {
    if (m_isPlaying)
        return;
    // No console line: this is retried 60 times a second while the lid moves.
    if (!m_engine->isRunning() && m_engine->start())
        return;
    if (m_needsSchedule && m_audioBuffer) {
        scheduleBuffer();
        m_needsSchedule = false;
    }
    m_playerNode->play();
    m_isPlaying = true;
}

void AudioManager::pause() {
    m_playerNode->pause();
    m_isPlaying = false;
}

void AudioManager::scheduleBuffer() {
    // Called on an audio thread.
    m_playerNode->scheduleBuffer(
        m_audioBuffer, BufferOptions::Once,
        [weak = weak_from_this(), &runLoop = m_platform.runLoop, play = m_play] {
            runLoop.async([weak, play] {
                if (const auto manager = weak.lock())
                    manager->finishPlay(play);
            });
        });
}

void AudioManager::finishPlay(unsigned play) {
    const bool wasStopped = play != m_play;
    if (!wasStopped) {
        m_needsSchedule = true;
        m_isPlaying = false;
    }
    m_platform.console.print("✅ [AUDIO] Τελείωσε — ready for next");
    if (!wasStopped && onCompleted)
        onCompleted();
}

void AudioManager::stop() {
    m_playerNode->stop();
    ++m_play;
    m_isPlaying = false;
    m_needsSchedule = true;
}

} // namespace quorvane
