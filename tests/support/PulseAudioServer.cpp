#include "tests/support/PulseAudioServer.h"

#include <sstream>
#include <stdexcept>

#include "tests/support/TemporaryFolder.h"
#include "tests/support/Waiting.h"

namespace quorvane {

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

void PulseAudioServer::removeSink(const std::string& name) {
    std::istringstream modules(control({"list", "short", "modules"}));
    for (std::string line; std::getline(modules, line);)
        if (line.find("sink_name=" + name + " ") != std::string::npos)
            control({"unload-module", line.substr(0, line.find('\t'))});
}

} // namespace quorvane
