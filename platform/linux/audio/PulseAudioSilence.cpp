#include "platform/linux/audio/PulseAudioSilence.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace quorvane {

namespace {

// Microseconds. A stream that asks for no adjustment has the server's output buffer made as long as
// its own less two requests. As many wake-ups of the server a second as an ordinary player costs
// it.
constexpr pa_usec_t request = 1'000'000;
constexpr pa_usec_t outputBuffer = 10'000;

constexpr auto unspecified = static_cast<std::uint32_t>(-1);
// Rate and channels are replaced by the output's, so that the server converts nothing.
constexpr pa_sample_spec sampleSpec{.format = PA_SAMPLE_S16LE, .rate = 48000, .channels = 2};

constexpr std::array<std::byte, 65536> silence{};

} // namespace

std::unique_ptr<PulseAudioSilence> PulseAudioSilence::start() {
    const PulseAudioLibrary* pulse = PulseAudioLibrary::load();
    if (!pulse)
        return nullptr;
    std::unique_ptr<PulseAudioSilence> made(new PulseAudioSilence(*pulse));
    if (!made->connect())
        return nullptr;
    return made;
}

PulseAudioSilence::~PulseAudioSilence() {
    if (m_loop)
        m_pulse.pa_threaded_mainloop_stop(m_loop);
    if (m_context)
        m_pulse.pa_context_disconnect(m_context);
    if (m_stream)
        m_pulse.pa_stream_unref(m_stream);
    if (m_context)
        m_pulse.pa_context_unref(m_context);
    if (m_loop)
        m_pulse.pa_threaded_mainloop_free(m_loop);
}

bool PulseAudioSilence::connect() {
    m_loop = m_pulse.pa_threaded_mainloop_new();
    if (!m_loop)
        return false;
    m_context = m_pulse.pa_context_new(m_pulse.pa_threaded_mainloop_get_api(m_loop), "Quorvane");
    if (!m_context)
        return false;
    const auto changed = [](pa_context*, void* self) {
        static_cast<PulseAudioSilence*>(self)->contextChanged();
    };
    m_pulse.pa_context_set_state_callback(m_context, changed, this);
    return m_pulse.pa_context_connect(m_context, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) >= 0 &&
           m_pulse.pa_threaded_mainloop_start(m_loop) >= 0;
}

void PulseAudioSilence::contextChanged() {
    const pa_context_state_t state = m_pulse.pa_context_get_state(m_context);
    if (state == PA_CONTEXT_READY)
        createStream();
    else if (!PA_CONTEXT_IS_GOOD(state))
        m_playing = false;
}

void PulseAudioSilence::createStream() {
    m_stream = m_pulse.pa_stream_new(m_context, "Silence", &sampleSpec, nullptr);
    if (!m_stream)
        return;
    const auto changed = [](pa_stream*, void* self) {
        static_cast<PulseAudioSilence*>(self)->streamChanged();
    };
    const auto wanted = [](pa_stream*, std::size_t bytes, void* self) {
        static_cast<PulseAudioSilence*>(self)->write(bytes);
    };
    const auto started = [](pa_stream*, void* self) {
        static_cast<PulseAudioSilence*>(self)->m_playing = true;
    };
    m_pulse.pa_stream_set_state_callback(m_stream, changed, this);
    m_pulse.pa_stream_set_write_callback(m_stream, wanted, this);
    m_pulse.pa_stream_set_started_callback(m_stream, started, this);
    constexpr auto flags =
        static_cast<pa_stream_flags_t>(PA_STREAM_FIX_RATE | PA_STREAM_FIX_CHANNELS);
    m_pulse.pa_stream_connect_playback(m_stream, nullptr, nullptr, flags, nullptr, nullptr);
}

/// The buffer is measured in bytes of a format that is known only now.
void PulseAudioSilence::streamChanged() {
    const pa_stream_state_t state = m_pulse.pa_stream_get_state(m_stream);
    if (!PA_STREAM_IS_GOOD(state))
        m_playing = false;
    if (state != PA_STREAM_READY)
        return;
    const pa_sample_spec* spec = m_pulse.pa_stream_get_sample_spec(m_stream);
    const auto bytes = [&](pa_usec_t time) {
        return static_cast<std::uint32_t>(m_pulse.pa_usec_to_bytes(time, spec));
    };
    const pa_buffer_attr lengths{.maxlength = unspecified,
                                 .tlength = bytes(2 * request + outputBuffer),
                                 .prebuf = 0,
                                 .minreq = bytes(request),
                                 .fragsize = unspecified};
    if (pa_operation* operation =
            m_pulse.pa_stream_set_buffer_attr(m_stream, &lengths, nullptr, nullptr))
        m_pulse.pa_operation_unref(operation);
}

void PulseAudioSilence::write(std::size_t bytes) {
    const std::size_t frame =
        sizeof(std::int16_t) * m_pulse.pa_stream_get_sample_spec(m_stream)->channels;
    while (bytes > 0) {
        const std::size_t part = std::min(bytes, silence.size() - silence.size() % frame);
        if (m_pulse.pa_stream_write(m_stream, silence.data(), part, nullptr, 0, PA_SEEK_RELATIVE) <
            0)
            return;
        bytes -= part;
    }
}

} // namespace quorvane
