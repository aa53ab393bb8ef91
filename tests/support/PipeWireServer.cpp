#include "tests/support/PipeWireServer.h"

#include <algorithm>
#include <fstream>
#include <ranges>
#include <stdexcept>
#include <string_view>

#include "tests/support/RepeatedTest.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

// A fragment beside the distribution's own pipewire.conf.
constexpr std::string_view graph = R"(
context.properties = {
    support.dbus = false
    default.clock.rate = 44100
    module.x11.bell = false
}
context.objects = [
    { factory = adapter
      args = {
          factory.name = support.null-audio-sink
          node.name = out
          media.class = Audio/Sink
          audio.position = [ FL FR ]
          audio.rate = 44100
          monitor.channel-volumes = true
          object.linger = true
      }
    }
]
)";

constexpr std::string_view pulseServer = R"(
context.properties = { support.dbus = false }
context.spa-libs = {
    audio.convert.* = audioconvert/libspa-audioconvert
    support.* = support/libspa-support
}
context.modules = [
    { name = libpipewire-module-rt args = { nice.level = -11 } flags = [ ifexists nofail ] }
    { name = libpipewire-module-protocol-native }
    { name = libpipewire-module-client-node }
    { name = libpipewire-module-adapter }
    { name = libpipewire-module-metadata }
    { name = libpipewire-module-protocol-pulse
      args = { server.address = [ "unix:SOCKET" ] }
    }
]
)";

// Fragments of WirePlumber's configuration: nothing that needs hardware, a message bus or files.
constexpr std::string_view sessionMain = R"(
alsa_monitor.enabled = false
v4l2_monitor.enabled = false
libcamera_monitor.enabled = false
default_access.properties["enable-flatpak-portal"] = false
device_defaults.properties["use-persistent-storage"] = false
)";
constexpr std::string_view sessionBluetooth = "bluez_monitor.enabled = false\n";

void write(const std::filesystem::path& file, std::string_view text) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file) << text;
}

} // namespace

PipeWireServer::PipeWireServer(const std::filesystem::path& folder) : SoundServer(folder) {
    const auto config = folder / "config";
    std::string server(pulseServer);
    server.replace(server.find("SOCKET"), std::string_view("SOCKET").size(), socketPath());
    write(config / "pipewire/pipewire.conf.d/out.conf", graph);
    write(config / "pipewire/pulse-server.conf", server);
    write(config / "wireplumber/main.lua.d/51-no-hardware.lua", sessionMain);
    write(config / "wireplumber/bluetooth.lua.d/51-no-hardware.lua", sessionBluetooth);
}

PipeWireServer::~PipeWireServer() {
    kill();
    // A process that does not answer within its period, of 5.8 ms while the program plays, leaves
    // silence or a gap in what is recorded. On a busy machine that can be any of them.
    std::ifstream log(folder() / "pipewire.log");
    for (std::string line; std::getline(log, line);)
        if (line.find("client too slow!") != std::string::npos)
            repeatIfItFails("PipeWire: " + line);
}

void PipeWireServer::start() {
    std::filesystem::remove(socketPath());
    std::filesystem::remove(folder() / "pipewire-0");
    const auto require = [this](const auto& condition) {
        if (!waitUntil([&] { return condition() || !isAlive(); }) || !isAlive())
            throw std::runtime_error("no PipeWire: " + fileText(folder() / "pipewire.log"));
    };
    launch({"pipewire"});
    require([this] { return std::filesystem::exists(folder() / "pipewire-0"); });
    launch({"wireplumber"});
    launch({"pipewire", "-c", "pulse-server.conf"});
    require([this] { return acceptsConnections(); });
    require([this] { return isDefaultSink("out"); });
}

void PipeWireServer::kill() {
    // The PulseAudio server first: otherwise it tells its clients that their sink has gone.
    while (!m_processes.empty())
        m_processes.pop_back();
    std::filesystem::remove(socketPath());
}

void PipeWireServer::addLateSink(const std::string& name) {
    addSink(name);
    // All of its sinks then take 8192 frames at a time.
    const std::vector<std::string> command{"pw-metadata",         "-n",  "settings", "0",
                                           "clock.force-quantum", "8192"};
    if (ChildProcess(inItsEnvironment(command), folder() / "pipewire.log").wait() != 0)
        throw std::runtime_error("no late sink: " + fileText(folder() / "pipewire.log"));
}

void PipeWireServer::removeSink(const std::string& name) {
    const auto log = folder() / "pw-cli.txt";
    ChildProcess(inItsEnvironment({"pw-cli", "destroy", name}), log).wait();
    if (!waitUntil([&] { return !hasSink(name); }))
        throw std::runtime_error("sink " + name + " stays: " + fileText(log));
}

void PipeWireServer::launch(const std::vector<std::string>& command) {
    m_processes.push_back(
        std::make_unique<ChildProcess>(inItsEnvironment(command), folder() / "pipewire.log"));
}

void PipeWireServer::send(int signal) const {
    for (const auto& process : m_processes)
        process->send(signal);
}

bool PipeWireServer::isAlive() const {
    return std::ranges::all_of(m_processes, [](const auto& process) { return process->isAlive(); });
}

std::vector<std::string>
PipeWireServer::inItsEnvironment(const std::vector<std::string>& command) const {
    std::vector<std::string> all{
        "env", "--unset=PIPEWIRE_RUNTIME_DIR", "--unset=PIPEWIRE_REMOTE", "--unset=DISPLAY",
        "DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent", "XDG_RUNTIME_DIR=" + folder().string(),
        "XDG_STATE_HOME=" + (folder() / "state").string(),
        // Messages about periods that were missed.
        "PIPEWIRE_DEBUG=2,pw.node:3"};
    all.insert(all.end(), command.begin(), command.end());
    return all;
}

} // namespace quorvane
