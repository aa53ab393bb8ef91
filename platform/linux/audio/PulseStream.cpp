#include "platform/linux/audio/PulseStream.h"

#include <algorithm>
#include <utility>

#include "platform/linux/audio/Voice.h"

namespace quorvane {

namespace {

constexpr std::size_t frameSize = streamChannels * sizeof(float);
// The server asks for more once this much has been played.
constexpr std::uint32_t request = streamRate * frameSize;
// The latency that remains for the server's output: with more, stopping takes that long on an
// output that cannot take back what it has; with less, the server works more often.
constexpr std::uint32_t outputLatency = request / 100;

} // namespace

void PulseStream::Close::operator()(pa_stream* stream) const {
    pa_stream_set_state_callback(stream, nullptr, nullptr);
    pa_stream_set_write_callback(stream, nullptr, nullptr);
    pa_stream_set_suspended_callback(stream, nullptr, nullptr);
    pa_stream_set_moved_callback(stream, nullptr, nullptr);
    pa_stream_set_started_callback(stream, nullptr, nullptr);
    pa_stream_disconnect(stream);
    pa_stream_unref(stream);
}

void PulseStream::Cancel::operator()(pa_operation* operation) const {
    pa_operation_cancel(operation);
    pa_operation_unref(operation);
}

PulseStream::PulseStream(pa_stream* stream, Events events)
    : m_events(std::move(events)), m_stream(stream) {}

std::unique_ptr<PulseStream> PulseStream::open(pa_context& context, Events events) {
    const pa_sample_spec format{
        .format = PA_SAMPLE_FLOAT32NE, .rate = streamRate, .channels = streamChannels};
    pa_stream* made = pa_stream_new(&context, "Sound effects", &format, nullptr);
    if (!made)
        return nullptr;
    std::unique_ptr<PulseStream> stream(new PulseStream(made, std::move(events)));
    return stream->connect() ? std::move(stream) : nullptr;
}

bool PulseStream::connect() {
    pa_stream_set_state_callback(
        m_stream.get(),
        [](pa_stream*, void* self) { static_cast<PulseStream*>(self)->stateChanged(); }, this);
    pa_stream_set_write_callback(
        m_stream.get(),
        [](pa_stream*, std::size_t, void* self) {
            static_cast<PulseStream*>(self)->m_events.changed();
        },
        this);
    const pa_stream_notify_cb_t changed = [](pa_stream*, void* self) {
        static_cast<PulseStream*>(self)->m_events.changed();
    };
    pa_stream_set_suspended_callback(m_stream.get(), changed, this);
    pa_stream_set_moved_callback(m_stream.get(), changed, this);
    pa_stream_set_started_callback(m_stream.get(), changed, this);
    // Without an adjusted latency, the server gives its output what the buffer has beyond two
    // requests. It starts at once, and is not stopped by an empty buffer.
    const pa_buffer_attr buffer{.maxlength = static_cast<std::uint32_t>(-1),
                                .tlength = 2 * request + outputLatency,
                                .prebuf = 0,
                                .minreq = request,
                                .fragsize = static_cast<std::uint32_t>(-1)};
    return pa_stream_connect_playback(m_stream.get(), nullptr, &buffer, PA_STREAM_NOFLAGS, nullptr,
                                      nullptr) == 0;
}

void PulseStream::stateChanged() {
    const pa_stream_state_t state = pa_stream_get_state(m_stream.get());
    if (state == PA_STREAM_READY)
        m_events.ready();
    else if (!PA_STREAM_IS_GOOD(state))
        m_events.lost();
}

void PulseStream::write(std::span<const float> samples, std::int64_t frame) {
    pa_stream_write(m_stream.get(), samples.data(), samples.size_bytes(), nullptr,
                    frame * static_cast<std::int64_t>(frameSize), PA_SEEK_ABSOLUTE);
}

void PulseStream::askPosition() {
    m_question.reset(pa_stream_update_timing_info(
        m_stream.get(),
        [](pa_stream*, int success, void* self) {
            static_cast<PulseStream*>(self)->answer(success != 0);
        },
        this));
}

void PulseStream::answer(bool success) {
    const pa_timing_info* timing = success ? pa_stream_get_timing_info(m_stream.get()) : nullptr;
    if (!timing) {
        m_events.lost();
        return;
    }
    const auto next = timing->read_index / static_cast<std::int64_t>(frameSize);
    const auto latency = static_cast<std::int64_t>(timing->sink_usec) * streamRate / 1'000'000;
    m_events.position(next, next - latency);
}

void PulseStream::cork(bool corked) {
    pa_operation* operation = pa_stream_cork(m_stream.get(), corked ? 1 : 0, nullptr, nullptr);
    if (operation)
        pa_operation_unref(operation);
}

} // namespace quorvane
