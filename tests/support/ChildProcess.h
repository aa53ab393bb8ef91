#pragma once

#include <csignal>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <sys/types.h>

#include "base/NonCopyable.h"

namespace quorvane {

/// A child process that is killed with this object, and when the test program dies. Throws when it
/// cannot be started.
class ChildProcess : NonCopyable {
public:
    /// Its standard output is read with `line`, its standard error is dropped.
    explicit ChildProcess(const std::vector<std::string>& command);
    /// All of its output is appended to `log`.
    ChildProcess(const std::vector<std::string>& command, const std::filesystem::path& log);
    /// A fork of this process that runs `work` and exits with what it returns. It is in a process
    /// group of its own, as a shell would start it: in an orphaned group SIGTSTP is ignored.
    explicit ChildProcess(const std::function<int()>& work);

    ~ChildProcess();

    /// The next line of its output; waits for it. Empty at its end.
    [[nodiscard]] std::string line() const;
    [[nodiscard]] bool isAlive();

    /// Below 0 once it is known to have ended.
    [[nodiscard]] pid_t pid() const { return m_pid; }

    void send(int signal) const;
    /// Sends `signal` and waits until the process has ended.
    void end(int signal = SIGKILL);
    /// Waits until it has ended; returns its exit status, -1 when a signal ended it.
    int wait();
    /// Waits until a signal stops it, and returns that; 0 if it has ended instead.
    [[nodiscard]] int waitForStop();

    /// Runs `command` to its end and drops its output; returns its exit status.
    static int run(const std::vector<std::string>& command);

private:
    pid_t m_pid = -1;
    // The end of the pipe that is read, where there is one.
    int m_output = -1;
};

} // namespace quorvane
