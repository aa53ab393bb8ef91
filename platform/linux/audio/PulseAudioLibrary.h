#pragma once

#include <pulse/pulseaudio.h>

namespace quorvane {

/// Functions of libpulse under their own names; PipeWire speaks its protocol too. Loaded on first
/// use, when OpenAL has loaded it already, and never unloaded, which libpulse does not support.
struct PulseAudioLibrary {
    /// Null when it is not installed.
    [[nodiscard]] static const PulseAudioLibrary* load();

    decltype(&::pa_threaded_mainloop_new) pa_threaded_mainloop_new = nullptr;
    decltype(&::pa_threaded_mainloop_free) pa_threaded_mainloop_free = nullptr;
    decltype(&::pa_threaded_mainloop_start) pa_threaded_mainloop_start = nullptr;
    decltype(&::pa_threaded_mainloop_stop) pa_threaded_mainloop_stop = nullptr;
    decltype(&::pa_threaded_mainloop_get_api) pa_threaded_mainloop_get_api = nullptr;
    decltype(&::pa_context_new) pa_context_new = nullptr;
    decltype(&::pa_context_unref) pa_context_unref = nullptr;
    decltype(&::pa_context_connect) pa_context_connect = nullptr;
    decltype(&::pa_context_disconnect) pa_context_disconnect = nullptr;
    decltype(&::pa_context_get_state) pa_context_get_state = nullptr;
    decltype(&::pa_context_set_state_callback) pa_context_set_state_callback = nullptr;
    decltype(&::pa_stream_new) pa_stream_new = nullptr;
    decltype(&::pa_stream_unref) pa_stream_unref = nullptr;
    decltype(&::pa_stream_connect_playback) pa_stream_connect_playback = nullptr;
    decltype(&::pa_stream_get_sample_spec) pa_stream_get_sample_spec = nullptr;
    decltype(&::pa_stream_get_state) pa_stream_get_state = nullptr;
    decltype(&::pa_stream_set_buffer_attr) pa_stream_set_buffer_attr = nullptr;
    decltype(&::pa_stream_set_started_callback) pa_stream_set_started_callback = nullptr;
    decltype(&::pa_stream_set_state_callback) pa_stream_set_state_callback = nullptr;
    decltype(&::pa_stream_set_write_callback) pa_stream_set_write_callback = nullptr;
    decltype(&::pa_stream_write) pa_stream_write = nullptr;
    decltype(&::pa_operation_unref) pa_operation_unref = nullptr;
    decltype(&::pa_usec_to_bytes) pa_usec_to_bytes = nullptr;

private:
    [[nodiscard]] bool resolve(void* handle);
};

} // namespace quorvane
