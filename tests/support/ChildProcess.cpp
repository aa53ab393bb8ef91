#include "tests/support/ChildProcess.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <utility>

namespace quorvane {

namespace {

pid_t forkChild() {
    const pid_t child = fork();
    if (child < 0)
        throw std::runtime_error("cannot fork");
    if (child == 0)
        prctl(PR_SET_PDEATHSIG, SIGKILL);
    return child;
}

std::vector<char*> argumentsOf(const std::vector<std::string>& command) {
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    return arguments;
}

[[noreturn]] void execute(const std::vector<char*>& arguments, int output, int errors) {
    dup2(output, STDOUT_FILENO);
    dup2(errors, STDERR_FILENO);
    execvp(arguments.front(), arguments.data());
    _exit(127);
}

} // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& command) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    const auto arguments = argumentsOf(command);
    m_pid = forkChild();
    if (m_pid == 0)
        execute(arguments, ends[1], open("/dev/null", O_WRONLY | O_CLOEXEC));
    close(ends[1]);
    m_output = ends[0];
}

ChildProcess::ChildProcess(const std::vector<std::string>& command,
                           const std::filesystem::path& log) {
    const auto arguments = argumentsOf(command);
    m_pid = forkChild();
    if (m_pid != 0)
        return;
    const int output = open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    execute(arguments, output, output);
}

ChildProcess::ChildProcess(const std::function<int()>& work) : m_pid(forkChild()) {
    if (m_pid != 0)
        return;
    setpgid(0, 0);
    _exit(work());
}

ChildProcess::~ChildProcess() {
    end();
    if (m_output >= 0)
        close(m_output);
}

std::string ChildProcess::line() const {
    std::string text;
    for (char letter = 0; read(m_output, &letter, 1) == 1 && letter != '\n';)
        text += letter;
    return text;
}

bool ChildProcess::isAlive() {
    if (m_pid > 0 && waitpid(m_pid, nullptr, WNOHANG) == m_pid)
        m_pid = -1;
    return m_pid > 0;
}

void ChildProcess::send(int signal) const {
    if (m_pid > 0)
        kill(m_pid, signal);
}

void ChildProcess::end(int signal) {
    send(signal);
    wait();
}

int ChildProcess::wait() {
    const pid_t child = std::exchange(m_pid, -1);
    int status = 0;
    if (child <= 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status))
        return -1;
    return WEXITSTATUS(status);
}

int ChildProcess::waitForStop() {
    int status = 0;
    if (waitpid(m_pid, &status, WUNTRACED) == m_pid && WIFSTOPPED(status))
        return WSTOPSIG(status);
    m_pid = -1;
    return 0;
}

int ChildProcess::run(const std::vector<std::string>& command) {
    return ChildProcess(command, "/dev/null").wait();
}

} // namespace quorvane
