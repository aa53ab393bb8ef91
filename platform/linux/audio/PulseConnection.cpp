#include "platform/linux/audio/PulseConnection.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string_view>

#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <unistd.h>

namespace quorvane {

namespace {

/// Where the server makes its socket; empty if it is asked for elsewhere.
std::filesystem::path socketPath() {
    // The environment is not changed while the program runs.
    const auto variable = [](const char* name) {
        const char* value = std::getenv(name); // NOLINT(concurrency-mt-unsafe)
        return std::string_view(value ? value : "");
    };
    constexpr std::string_view unixPrefix = "unix:";
    if (const auto server = variable("PULSE_SERVER"); !server.empty())
        return server.starts_with(unixPrefix) ? server.substr(unixPrefix.size()) : "";
    if (const auto folder = variable("PULSE_RUNTIME_PATH"); !folder.empty())
        return std::filesystem::path(folder) / "native";
    return std::filesystem::path(variable("XDG_RUNTIME_DIR")) / "pulse" / "native";
}

} // namespace

void PulseConnection::CloseContext::operator()(pa_context* context) const {
    pa_context_set_state_callback(context, nullptr, nullptr);
    pa_context_disconnect(context);
    pa_context_unref(context);
}

PulseConnection::PulseConnection()
    : m_loop(pa_mainloop_new()), m_wake(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
    if (!isUsable())
        return;
    pa_mainloop_api* api = pa_mainloop_get_api(m_loop.get());
    api->io_new(
        api, m_wake.get(), PA_IO_EVENT_INPUT,
        [](pa_mainloop_api*, pa_io_event*, int descriptor, pa_io_event_flags_t, void*) {
            std::uint64_t count = 0;
            static_cast<void>(read(descriptor, &count, sizeof count));
        },
        nullptr);
    watchSocket();
}

PulseConnection::~PulseConnection() = default;

void PulseConnection::connect() {
    pa_proplist* properties = pa_proplist_new();
    pa_proplist_sets(properties, PA_PROP_APPLICATION_NAME, "Quorvane");
    pa_proplist_sets(properties, PA_PROP_APPLICATION_ID, "quorvane");
    pa_proplist_sets(properties, PA_PROP_APPLICATION_ICON_NAME, "quorvane");
    m_context.reset(
        pa_context_new_with_proplist(pa_mainloop_get_api(m_loop.get()), nullptr, properties));
    pa_proplist_free(properties);
    if (!m_context)
        return;
    pa_context_set_state_callback(
        m_context.get(),
        [](pa_context* context, void* self) {
            if (pa_context_get_state(context) == PA_CONTEXT_READY)
                static_cast<PulseConnection*>(self)->identifyServer();
        },
        this);
    if (pa_context_connect(m_context.get(), nullptr, PA_CONTEXT_NOFLAGS, nullptr) < 0)
        m_context.reset();
}

/// The answer comes before that to any later call.
void PulseConnection::identifyServer() {
    m_isPipeWire = false;
    pa_operation* question = pa_context_get_server_info(
        m_context.get(),
        [](pa_context*, const pa_server_info* server, void* self) {
            const std::string_view name = server && server->server_name ? server->server_name : "";
            static_cast<PulseConnection*>(self)->m_isPipeWire =
                name.find("PipeWire") != std::string_view::npos;
        },
        this);
    if (question)
        pa_operation_unref(question);
}

PulseConnection::State PulseConnection::state() const {
    const pa_context_state_t state =
        m_context ? pa_context_get_state(m_context.get()) : PA_CONTEXT_UNCONNECTED;
    if (state == PA_CONTEXT_READY)
        return State::Connected;
    return PA_CONTEXT_IS_GOOD(state) ? State::Connecting : State::None;
}

void PulseConnection::iterate(std::optional<Clock::time_point> deadline) {
    int timeout = -1;
    if (deadline) {
        const auto left = std::chrono::ceil<std::chrono::microseconds>(*deadline - Clock::now());
        constexpr std::chrono::microseconds longest = std::chrono::minutes(30);
        timeout = static_cast<int>(std::clamp(left, std::chrono::microseconds(0), longest).count());
    }
    if (pa_mainloop_prepare(m_loop.get(), timeout) >= 0 && pa_mainloop_poll(m_loop.get()) >= 0)
        pa_mainloop_dispatch(m_loop.get());
}

void PulseConnection::wake() const {
    const std::uint64_t one = 1;
    static_cast<void>(::write(m_wake.get(), &one, sizeof one));
}

void PulseConnection::watchSocket() {
    const auto socket = socketPath();
    m_socketName = socket.filename().string();
    m_inotify = FileDescriptor(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    if (!m_inotify || inotify_add_watch(m_inotify.get(), socket.parent_path().c_str(),
                                        IN_CREATE | IN_MOVED_TO) < 0)
        return;
    pa_mainloop_api* api = pa_mainloop_get_api(m_loop.get());
    api->io_new(
        api, m_inotify.get(), PA_IO_EVENT_INPUT,
        [](pa_mainloop_api*, pa_io_event*, int, pa_io_event_flags_t, void* self) {
            static_cast<PulseConnection*>(self)->readSocketEvents();
        },
        this);
}

void PulseConnection::readSocketEvents() {
    alignas(inotify_event) std::array<char, 4096> buffer{};
    const ssize_t size = read(m_inotify.get(), buffer.data(), buffer.size());
    for (ssize_t at = 0; at + static_cast<ssize_t>(sizeof(inotify_event)) <= size;) {
        inotify_event event{};
        std::memcpy(&event, &buffer[static_cast<std::size_t>(at)], sizeof event);
        at += static_cast<ssize_t>(sizeof event);
        if (event.len > 0 && m_socketName == &buffer[static_cast<std::size_t>(at)])
            m_serverAppeared = true;
        at += event.len;
    }
}

} // namespace quorvane
