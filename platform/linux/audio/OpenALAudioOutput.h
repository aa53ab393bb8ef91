#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "base/NonCopyable.h"
#include "platform/Audio.h"
#include "platform/linux/audio/OpenALAudioClip.h"
#include "platform/linux/audio/OpenALAudioDevice.h"
#include "platform/linux/audio/OpenALAudioLibrary.h"
#include "platform/linux/audio/OpenALAudioVoice.h"
#include "platform/linux/audio/PulseAudioSilence.h"

namespace quorvane {

/// The one output device that all engines and file players share, open while an engine runs, a
/// hold lives or a file player sounds, and the thread that waits for sounds to end and for devices
/// to come. Everything is guarded by one mutex; calls come from the main thread, completions from
/// the thread here. That thread alone makes the calls that wait for the sound server, without the
/// mutex, so that one that hangs holds up nobody. The owner of the last reference must not be a
/// completion. Where a sound server plays, a held device is kept running by a silent stream, and
/// its own rests.
class OpenALAudioOutput : NonCopyable {
public:
    using Clock = std::chrono::steady_clock;
    /// Silence after which the device is paused: an open stream wakes the processor hundreds of
    /// times a second, even with nothing to play.
    static constexpr std::chrono::seconds idleTime{10};
    /// The same while a hold lives and something else keeps the output running.
    static constexpr std::chrono::seconds heldIdleTime{3};

    /// How long the device stays open after the last file player fell silent.
    static constexpr std::chrono::seconds lingerTime{2};

    [[nodiscard]] static std::shared_ptr<OpenALAudioOutput> create();
    ~OpenALAudioOutput() = default;

    // Engines are told apart by their address.

    std::optional<AudioError> startEngine(const void* engine);
    void stopEngine(const void* engine);
    /// The engine is gone; its address may be another's soon.
    void removeEngine(const void* engine);
    [[nodiscard]] bool isEngineRunning(const void* engine);

    void attach(const std::shared_ptr<OpenALAudioVoice>& voice, const void* engine);
    /// The voice's node is gone.
    void remove(const std::shared_ptr<OpenALAudioVoice>& voice);
    void schedule(OpenALAudioVoice& voice, std::shared_ptr<const PCMBuffer> buffer,
                  BufferOptions options, AudioPlayerNode::Completion completion);
    void play(OpenALAudioVoice& voice);
    void pause(OpenALAudioVoice& voice);
    void stop(OpenALAudioVoice& voice);
    void setVolume(OpenALAudioVoice& voice, float volume);

    void add(const std::shared_ptr<OpenALAudioClip>& clip);
    /// The clip's player is gone.
    void remove(const std::shared_ptr<OpenALAudioClip>& clip);
    /// Opens the device if need be; without one, the clip waits for it. Whether it sounds.
    bool play(OpenALAudioClip& clip);

    /// Runs `access`, which is given nothing, with the mutex held and everything up to date; a
    /// clip may be read and changed there.
    template <class Access>
    auto withClips(Access access) {
        const std::lock_guard lock(m_mutex);
        noticeLoss();
        tidyClips();
        m_changed.notify_one();
        return access();
    }

    /// Keeps the device open and its stream running, until as many calls of `release`.
    void hold();
    void release();

private:
    struct Finished {
        AudioPlayerNode::Completion completion;
        Clock::time_point due;
    };

    OpenALAudioOutput() = default;
    void end();

    // All of these run with the mutex held; those that are given the lock let go of it meanwhile.
    std::optional<AudioError> awaitDevice(std::unique_lock<std::mutex>& lock);
    template <class Call>
    void unlocked(std::unique_lock<std::mutex>& lock, Call call);
    // What the thread alone does: whether there was something to do.
    bool closeLater(std::unique_lock<std::mutex>& lock);
    bool tryToOpen(std::unique_lock<std::mutex>& lock);
    bool pauseOrResume(std::unique_lock<std::mutex>& lock);
    bool keepRunning(std::unique_lock<std::mutex>& lock);
    void closeDevice();
    void closeWhenUnneeded();
    void noticeLoss();
    void tidyClips();
    [[nodiscard]] bool isAwaited() const;
    [[nodiscard]] bool runs(const void* engine) const;
    void stopVoicesOf(const void* engine);
    void finish(OpenALAudioVoice::Completions completions, Clock::time_point due);
    void finishHeard(OpenALAudioVoice::Completions completions);
    [[nodiscard]] bool isSounding() const;
    [[nodiscard]] bool areClipsSounding() const;
    [[nodiscard]] bool isStreamNeeded() const;
    [[nodiscard]] Clock::duration idleLimit() const;
    [[nodiscard]] std::optional<Clock::time_point> nextWake() const;
    [[nodiscard]] OpenALAudioVoice::Completions takeDue(Clock::time_point now);

    void run();
    static void runCompletions(std::unique_lock<std::mutex>& lock,
                               OpenALAudioVoice::Completions completions);

    std::mutex m_mutex;
    std::condition_variable m_changed;
    // Tells callers that wait for the thread.
    std::condition_variable m_served;
    bool m_quit = false;
    bool m_ended = false;
    // The thread's own, whether it holds the mutex or not.
    std::unique_ptr<OpenALAudioLibrary> m_library;
    std::unique_ptr<OpenALAudioDevice> m_device;
    // To be closed by the thread.
    std::unique_ptr<OpenALAudioDevice> m_closing;
    // Keeps the output running in the stead of a held device's own stream, which then may rest.
    // Made once for each device: there is none where it cannot be.
    std::unique_ptr<PulseAudioSilence> m_silence;
    bool m_silenceTried = false;
    // Since when the thread has been in a call that may wait for the sound server.
    std::optional<Clock::time_point> m_blockedSince;
    // Callers that wait for a device; requests to open one so far, those of them for which that
    // has been tried, and why it failed the last time.
    std::size_t m_waiters = 0;
    std::size_t m_requests = 0;
    std::size_t m_answered = 0;
    AudioError m_openError;
    std::vector<const void*> m_runningEngines;
    std::vector<std::shared_ptr<OpenALAudioVoice>> m_voices;
    std::vector<std::shared_ptr<OpenALAudioClip>> m_clips;
    std::vector<Finished> m_finished;
    std::size_t m_holds = 0;
    // Until when the device stays open although nothing needs it.
    Clock::time_point m_lingersUntil;
    // When the thread may try again to open a device that something waits for.
    Clock::time_point m_nextAttempt;
    // Since when the open device has had nothing to play; none while it has.
    std::optional<Clock::time_point> m_idleSince;
    std::thread m_thread;
};

} // namespace quorvane
