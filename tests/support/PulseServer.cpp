#include "tests/support/PulseServer.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <utility>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "tests/support/TemporaryFolder.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

void setVariable(const char* name, const std::string& value) {
    setenv(name, value.c_str(), 1); // NOLINT(concurrency-mt-unsafe): before there are threads.
}

} // namespace

PulseServer::PulseServer(std::filesystem::path folder)
    : m_folder(std::move(folder)), m_socket(m_folder / "native") {
    setVariable("HOME", m_folder.string());
    setVariable("XDG_CONFIG_HOME", (m_folder / "config").string());
    setVariable("PULSE_RUNTIME_PATH", m_folder.string());
    setVariable("PULSE_COOKIE", (m_folder / "cookie").string());
    setVariable("PULSE_SERVER", "unix:" + m_socket.string());
}

void PulseServer::start() {
    std::filesystem::remove(m_socket);
    const std::string sink = "module-null-sink sink_name=out rate=44100 channels=2 "
                             "format=float32le norewinds=1";
    const std::string protocol =
        "module-native-protocol-unix auth-anonymous=1 socket=" + m_socket.string();
    const auto log = m_folder / "pulseaudio.log";
    m_process = std::make_unique<ChildProcess>(
        std::vector<std::string>{"env", "--unset=PULSE_SERVER", "pulseaudio", "-n",
                                 "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1",
                                 "--high-priority=no", "--realtime=no", "--log-target=stderr",
                                 "--load=" + sink, "--load=" + protocol},
        log);
    const auto settled = [this] { return accepts() || !m_process->isAlive(); };
    if (!waitUntil(settled) || !m_process->isAlive())
        throw std::runtime_error("pulseaudio does not start: " + fileText(log));
}

void PulseServer::kill() {
    m_process.reset();
    std::filesystem::remove(m_socket);
}

void PulseServer::freeze() {
    m_process->send(SIGSTOP);
}

bool PulseServer::accepts() const {
    const int client = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = m_socket.string();
    std::memcpy(address.sun_path, path.c_str(), std::min(path.size(), sizeof address.sun_path - 1));
    const bool connected =
        connect(client, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    close(client);
    return connected;
}

PulseRecorder::PulseRecorder(const std::filesystem::path& folder)
    : m_file(folder / "recording.raw"),
      m_process({"parec", "--device=out.monitor", "--raw", "--format=float32le", "--rate=44100",
                 "--channels=2", "--latency-msec=10", m_file.string()},
                folder / "parec.log") {
    if (!waitUntil([this] { return recordedBytes() > 0; }))
        throw std::runtime_error("parec does not record");
}

std::uintmax_t PulseRecorder::recordedBytes() const {
    std::error_code missing;
    const auto size = std::filesystem::file_size(m_file, missing);
    return missing ? 0 : size;
}

std::vector<float> PulseRecorder::finish() {
    // At most 0.37 s, the longest buffer of any test, has been played and not yet written.
    constexpr std::uintmax_t halfASecond = sizeof(float) * 2 * 44100 / 2;
    const std::uintmax_t enough = recordedBytes() + halfASecond;
    if (!waitUntil([&] { return recordedBytes() >= enough; }))
        throw std::runtime_error("parec has stopped recording");
    m_process.end(SIGTERM);
    const std::string bytes = fileText(m_file);
    std::vector<float> samples(bytes.size() / sizeof(float));
    std::memcpy(samples.data(), bytes.data(), samples.size() * sizeof(float));
    std::filesystem::remove(m_file);
    return samples;
}

} // namespace quorvane
