#include "tests/support/PulseServer.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <iterator>
#include <stdexcept>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quorvane {

namespace {

constexpr std::chrono::seconds patience{15};

bool waitFor(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + patience;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

[[noreturn]] void runChild(std::vector<char*> arguments, const char* log,
                           const std::vector<std::string>& unsetVariables) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const int output = open(log, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    dup2(output, STDOUT_FILENO);
    dup2(output, STDERR_FILENO);
    for (const std::string& variable : unsetVariables)
        unsetenv(variable.c_str()); // NOLINT(concurrency-mt-unsafe): the child has one thread.
    execvp(arguments.front(), arguments.data());
    _exit(127);
}

void setVariable(const char* name, const std::string& value) {
    setenv(name, value.c_str(), 1); // NOLINT(concurrency-mt-unsafe): before there are threads.
}

} // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& command,
                           const std::filesystem::path& log,
                           const std::vector<std::string>& unsetVariables) {
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    m_pid = fork();
    if (m_pid < 0)
        throw std::runtime_error("cannot fork");
    if (m_pid == 0)
        runChild(arguments, log.c_str(), unsetVariables);
}

ChildProcess::~ChildProcess() {
    end(SIGKILL);
}

bool ChildProcess::isAlive() {
    if (m_pid > 0 && waitpid(m_pid, nullptr, WNOHANG) == m_pid)
        m_pid = -1;
    return m_pid > 0;
}

void ChildProcess::end(int signal) {
    if (m_pid <= 0)
        return;
    ::kill(m_pid, signal);
    wait();
}

void ChildProcess::send(int signal) const {
    if (m_pid > 0)
        ::kill(m_pid, signal);
}

void ChildProcess::wait() {
    waitpid(m_pid, nullptr, 0);
    m_pid = -1;
}

TemporaryFolder::TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "quorvane-XXXXXX").string();
    if (!mkdtemp(name.data()))
        throw std::runtime_error("cannot make a temporary folder");
    m_path = name;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

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
    const std::vector<std::string> command{"pulseaudio",          "-n",
                                           "--daemonize=no",      "--use-pid-file=no",
                                           "--exit-idle-time=-1", "--high-priority=no",
                                           "--realtime=no",       "--log-target=stderr",
                                           "--load=" + sink,      "--load=" + protocol};
    m_process = std::make_unique<ChildProcess>(command, m_folder / "pulseaudio.log",
                                               std::vector<std::string>{"PULSE_SERVER"});
    const auto settled = [this] { return accepts() || !m_process->isAlive(); };
    if (!waitFor(settled) || !m_process->isAlive()) {
        std::ifstream log(m_folder / "pulseaudio.log");
        throw std::runtime_error("pulseaudio does not start: " +
                                 std::string(std::istreambuf_iterator<char>(log), {}));
    }
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
    if (!waitFor([this] { return recordedBytes() > 0; }))
        throw std::runtime_error("parec does not record");
}

std::uintmax_t PulseRecorder::recordedBytes() const {
    std::error_code missing;
    const auto size = std::filesystem::file_size(m_file, missing);
    return missing ? 0 : size;
}

std::vector<float> PulseRecorder::finish() {
    // What has been played but not yet written is the longest buffer of any test, 0.37 s, and some
    // more.
    constexpr std::uintmax_t halfASecond = sizeof(float) * 2 * 44100 / 2;
    const std::uintmax_t enough = recordedBytes() + halfASecond;
    if (!waitFor([&] { return recordedBytes() >= enough; }))
        throw std::runtime_error("parec does not record any more");
    m_process.end(SIGTERM);
    std::ifstream stream(m_file, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
    std::vector<float> samples(bytes.size() / sizeof(float));
    std::memcpy(samples.data(), bytes.data(), samples.size() * sizeof(float));
    std::filesystem::remove(m_file);
    return samples;
}

} // namespace quorvane
