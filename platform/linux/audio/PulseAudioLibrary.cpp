#include "platform/linux/audio/PulseAudioLibrary.h"

#include <dlfcn.h>

namespace quorvane {

const PulseAudioLibrary* PulseAudioLibrary::load() {
    static PulseAudioLibrary library;
    static const bool complete = [] {
        void* handle = dlopen("libpulse.so.0", RTLD_NOW | RTLD_LOCAL);
        return handle && library.resolve(handle);
    }();
    return complete ? &library : nullptr;
}

bool PulseAudioLibrary::resolve(void* handle) {
    const auto find = [handle]<class Function>(Function& function, const char* name) {
        // POSIX lets dlsym's pointers be converted to function pointers.
        function = reinterpret_cast<Function>(dlsym(handle, name));
        return function != nullptr;
    };
    return find(pa_threaded_mainloop_new, "pa_threaded_mainloop_new") &&
           find(pa_threaded_mainloop_free, "pa_threaded_mainloop_free") &&
           find(pa_threaded_mainloop_start, "pa_threaded_mainloop_start") &&
           find(pa_threaded_mainloop_stop, "pa_threaded_mainloop_stop") &&
           find(pa_threaded_mainloop_get_api, "pa_threaded_mainloop_get_api") &&
           find(pa_context_new, "pa_context_new") && find(pa_context_unref, "pa_context_unref") &&
           find(pa_context_connect, "pa_context_connect") &&
           find(pa_context_disconnect, "pa_context_disconnect") &&
           find(pa_context_get_state, "pa_context_get_state") &&
           find(pa_context_set_state_callback, "pa_context_set_state_callback") &&
           find(pa_stream_new, "pa_stream_new") && find(pa_stream_unref, "pa_stream_unref") &&
           find(pa_stream_connect_playback, "pa_stream_connect_playback") &&
           find(pa_stream_get_sample_spec, "pa_stream_get_sample_spec") &&
           find(pa_stream_get_state, "pa_stream_get_state") &&
           find(pa_stream_set_buffer_attr, "pa_stream_set_buffer_attr") &&
           find(pa_stream_set_started_callback, "pa_stream_set_started_callback") &&
           find(pa_stream_set_state_callback, "pa_stream_set_state_callback") &&
           find(pa_stream_set_write_callback, "pa_stream_set_write_callback") &&
           find(pa_stream_write, "pa_stream_write") &&
           find(pa_operation_unref, "pa_operation_unref") &&
           find(pa_usec_to_bytes, "pa_usec_to_bytes");
}

} // namespace quorvane
