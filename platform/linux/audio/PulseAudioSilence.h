#pragma once

#include <atomic>
#include <memory>

#include "base/NonCopyable.h"
#include "platform/linux/audio/PulseAudioLibrary.h"

namespace quorvane {

/// A silent stream on the sound server's default output, which keeps that running, so that another
/// stream of the program may rest until it has something to play. It hands over a second of silence
/// at a time and so costs next to nothing, while its share of the output's own buffer stays short:
/// servers that cannot take back what they have buffered make a new sound wait for no longer than
/// that.
class PulseAudioSilence : NonCopyable {
public:
    /// Begins to connect, and waits for nothing. Null without PulseAudio's client library.
    [[nodiscard]] static std::unique_ptr<PulseAudioSilence> start();
    /// Waits for no server either.
    ~PulseAudioSilence();

    /// The output runs for it: false at first, and for good once the stream or its server has gone.
    /// Any thread may ask.
    [[nodiscard]] bool isPlaying() const { return m_playing; }

private:
    explicit PulseAudioSilence(const PulseAudioLibrary& pulse) : m_pulse(pulse) {}

    // All of these run in the client library's thread, but for `connect`, which runs before it.
    bool connect();
    void contextChanged();
    void createStream();
    void streamChanged();
    void write(std::size_t bytes);

    const PulseAudioLibrary& m_pulse;
    pa_threaded_mainloop* m_loop = nullptr;
    pa_context* m_context = nullptr;
    pa_stream* m_stream = nullptr;
    std::atomic<bool> m_playing = false;
};

} // namespace quorvane
