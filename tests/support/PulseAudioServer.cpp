#include "tests/support/PulseAudioServer.h"

#include <array>
#include <chrono>
#include <sstream>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <unistd.h>

#include "tests/support/TemporaryFolder.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

/// Takes sound out of `pipe` as fast as it is to be heard.
int listenTo(const std::filesystem::path& pipe) {
    constexpr double bytesASecond = 44100.0 * 2 * sizeof(float);
    const int end = open(pipe.c_str(), O_RDONLY | O_CLOEXEC);
    const auto begin = std::chrono::steady_clock::now();
    std::array<char, 4096> sound{};
    for (double taken = 0;;) {
        const std::chrono::duration<double> past = std::chrono::steady_clock::now() - begin;
        if (taken > past.count() * bytesASecond) {
            std::this_thread::sleep_for(2ms);
            continue;
        }
        const ssize_t count = read(end, sound.data(), sound.size());
        if (count <= 0)
            return 0;
        taken += static_cast<double>(count);
    }
}

} // namespace

void PulseAudioServer::start() {
    std::filesystem::remove(socketPath());
    const std::string sink = "module-null-sink sink_name=out" + std::string(sinkArguments);
    const std::string protocol =
        "module-native-protocol-unix auth-anonymous=1 socket=" + socketPath();
    const auto log = folder() / "pulseaudio.log";
    // The protocol last: who can connect finds the sink.
    m_process = std::make_unique<ChildProcess>(
        std::vector<std::string>{"env", "--unset=PULSE_SERVER", "pulseaudio", "-n",
                                 "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1",
                                 "--high-priority=no", "--realtime=no", "--log-target=stderr",
                                 "--load=" + sink, "--load=" + protocol},
        log);
    const auto settled = [this] { return acceptsConnections() || !m_process->isAlive(); };
    if (!waitUntil(settled) || !m_process->isAlive())
        throw std::runtime_error("pulseaudio does not start: " + fileText(log));
}

void PulseAudioServer::kill() {
    m_process.reset();
    std::filesystem::remove(socketPath());
}

void PulseAudioServer::addLateSink(const std::string& name) {
    // What lies in the pipe, 64 KiB, is its latency.
    const auto pipe = folder() / (name + ".pipe");
    control({"load-module", "module-pipe-sink", "sink_name=" + name, "file=" + pipe.string(),
             "rate=44100", "channels=2", "format=float32le"});
    m_lateSinkReader = std::make_unique<ChildProcess>([pipe] { return listenTo(pipe); });
}

void PulseAudioServer::removeSink(const std::string& name) {
    std::istringstream modules(control({"list", "short", "modules"}));
    for (std::string line; std::getline(modules, line);)
        if (line.find("sink_name=" + name + " ") != std::string::npos)
            control({"unload-module", line.substr(0, line.find('\t'))});
}

} // namespace quorvane
