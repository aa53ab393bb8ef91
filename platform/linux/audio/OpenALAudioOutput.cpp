#include "platform/linux/audio/OpenALAudioOutput.h"

#include <algorithm>
#include <utility>

#include "platform/linux/audio/OpenALAudioConfiguration.h"

namespace quorvane {

namespace {

// A thread that is stuck in the sound server's client library is left behind when the program ends.
constexpr std::chrono::seconds partingTime{2};

} // namespace

std::shared_ptr<OpenALAudioOutput> OpenALAudioOutput::create() {
    configureOpenALAudio();
    const std::shared_ptr<OpenALAudioOutput> output(new OpenALAudioOutput);
    output->m_thread = std::thread([output] { output->run(); });
    // The thread has a reference too, so it is another's end that ends it.
    return {output.get(), [output](OpenALAudioOutput* /*owned by the capture*/) { output->end(); }};
}

void OpenALAudioOutput::end() {
    std::unique_lock lock(m_mutex);
    closeDevice();
    m_holds = 0;
    m_quit = true;
    m_changed.notify_one();
    const bool ended = m_served.wait_for(lock, partingTime, [this] { return m_ended; });
    lock.unlock();
    if (ended)
        m_thread.join();
    else
        m_thread.detach();
}

std::optional<AudioError> OpenALAudioOutput::startEngine(const void* engine) {
    std::unique_lock lock(m_mutex);
    noticeLoss();
    if (runs(engine))
        return std::nullopt;
    if (auto error = awaitDevice(lock))
        return error;
    m_runningEngines.push_back(engine);
    m_changed.notify_one();
    return std::nullopt;
}

void OpenALAudioOutput::stopEngine(const void* engine) {
    const std::lock_guard lock(m_mutex);
    if (std::erase(m_runningEngines, engine) == 0)
        return;
    stopVoicesOf(engine);
    closeWhenUnneeded();
    m_changed.notify_one();
}

bool OpenALAudioOutput::isEngineRunning(const void* engine) {
    const std::lock_guard lock(m_mutex);
    noticeLoss();
    return runs(engine);
}

void OpenALAudioOutput::attach(const std::shared_ptr<OpenALAudioVoice>& voice, const void* engine) {
    const std::lock_guard lock(m_mutex);
    voice->engine = engine;
    m_voices.push_back(voice);
}

void OpenALAudioOutput::removeEngine(const void* engine) {
    stopEngine(engine);
    const std::lock_guard lock(m_mutex);
    for (const auto& voice : m_voices)
        if (voice->engine == engine)
            voice->engine = nullptr;
}

void OpenALAudioOutput::remove(const std::shared_ptr<OpenALAudioVoice>& voice) {
    stop(*voice);
    const std::lock_guard lock(m_mutex);
    std::erase(m_voices, voice);
}

void OpenALAudioOutput::schedule(OpenALAudioVoice& voice, std::shared_ptr<const PCMBuffer> buffer,
                                 BufferOptions options, AudioPlayerNode::Completion completion) {
    bool playing = false;
    {
        const std::lock_guard lock(m_mutex);
        voice.schedule(std::move(buffer), options, std::move(completion));
        playing = voice.isPlaying();
    }
    if (playing)
        play(voice);
}

void OpenALAudioOutput::play(OpenALAudioVoice& voice) {
    const std::lock_guard lock(m_mutex);
    noticeLoss();
    if (!runs(voice.engine))
        return;
    finishHeard(voice.play(*m_device));
    m_changed.notify_one();
}

void OpenALAudioOutput::pause(OpenALAudioVoice& voice) {
    const std::lock_guard lock(m_mutex);
    finishHeard(voice.pause());
    m_changed.notify_one();
}

void OpenALAudioOutput::stop(OpenALAudioVoice& voice) {
    const std::lock_guard lock(m_mutex);
    finish(voice.stop(), Clock::now());
    m_changed.notify_one();
}

void OpenALAudioOutput::setVolume(OpenALAudioVoice& voice, float volume) {
    const std::lock_guard lock(m_mutex);
    voice.setVolume(volume);
}

void OpenALAudioOutput::add(const std::shared_ptr<OpenALAudioClip>& clip) {
    const std::lock_guard lock(m_mutex);
    m_clips.push_back(clip);
}

void OpenALAudioOutput::remove(const std::shared_ptr<OpenALAudioClip>& clip) {
    const std::lock_guard lock(m_mutex);
    clip->stop();
    clip->abandon();
    m_changed.notify_one();
}

bool OpenALAudioOutput::play(OpenALAudioClip& clip) {
    std::unique_lock lock(m_mutex);
    noticeLoss();
    tidyClips();
    if (clip.isSounding())
        return true;
    clip.stop();
    const auto asked = Clock::now();
    const bool opened = !awaitDevice(lock);
    if (opened)
        clip.play(*m_device);
    else
        clip.request(asked);
    m_changed.notify_one();
    return opened;
}

void OpenALAudioOutput::hold() {
    const std::lock_guard lock(m_mutex);
    if (m_holds++ == 0)
        m_nextAttempt = Clock::now();
    m_changed.notify_one();
}

void OpenALAudioOutput::release() {
    const std::lock_guard lock(m_mutex);
    --m_holds;
    closeWhenUnneeded();
    m_changed.notify_one();
}

bool OpenALAudioOutput::runs(const void* engine) const {
    return std::find(m_runningEngines.begin(), m_runningEngines.end(), engine) !=
           m_runningEngines.end();
}

void OpenALAudioOutput::stopVoicesOf(const void* engine) {
    for (const auto& voice : m_voices)
        if (voice->engine == engine)
            finish(voice->stop(), Clock::now());
}

void OpenALAudioOutput::finish(OpenALAudioVoice::Completions completions, Clock::time_point due) {
    for (auto& completion : completions)
        m_finished.push_back({.completion = std::move(completion), .due = due});
}

/// What has been mixed to its end is heard to its end a little later.
void OpenALAudioOutput::finishHeard(OpenALAudioVoice::Completions completions) {
    if (!completions.empty())
        finish(std::move(completions), Clock::now() + m_device->latency());
}

} // namespace quorvane
