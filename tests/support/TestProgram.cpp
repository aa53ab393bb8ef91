#include "tests/support/TestProgram.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <stdexcept>

namespace quorvane {

namespace {

[[noreturn]] void become(const std::vector<std::string>& command, int output) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    dup2(output, STDOUT_FILENO);
    dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDERR_FILENO);
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    execvp(arguments.front(), arguments.data());
    _exit(127);
}

} // namespace

TestProgram::TestProgram(const std::vector<std::string>& command) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    m_pid = fork();
    if (m_pid == 0)
        become(command, ends[1]);
    ::close(ends[1]);
    m_output = ends[0];
    if (m_pid < 0)
        throw std::runtime_error("cannot fork");
}

std::string TestProgram::line() const {
    std::string text;
    for (char letter = 0; read(m_output, &letter, 1) == 1 && letter != '\n';)
        text += letter;
    return text;
}

void TestProgram::end() {
    if (m_pid < 0)
        return;
    kill(m_pid, SIGKILL);
    waitpid(m_pid, nullptr, 0);
    m_pid = -1;
    ::close(m_output);
}

} // namespace quorvane
