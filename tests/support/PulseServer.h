#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <sys/types.h>

#include "base/NonCopyable.h"

namespace quorvane {

/// A child process that is ended with this object, and with the test program if that dies first.
class ChildProcess : NonCopyable {
public:
    /// Its output goes to `log`. Throws when it cannot be made.
    ChildProcess(const std::vector<std::string>& command, const std::filesystem::path& log,
                 const std::vector<std::string>& unsetVariables = {});
    ~ChildProcess();

    [[nodiscard]] bool isAlive();
    /// Waits until it ends by itself.
    void wait();
    /// Sends `signal` and waits for the end.
    void end(int signal);
    /// Sends `signal`.
    void send(int signal) const;

private:
    pid_t m_pid = -1;
};

/// A folder of its own that is removed with this object.
class TemporaryFolder : NonCopyable {
public:
    TemporaryFolder();
    ~TemporaryFolder();

    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

/// A private PulseAudio server with a null sink at 44.1 kHz, which every client in this process is
/// made to use through the environment; nothing of the person's own is read or written. Made before
/// the process has a second thread. Failures to start are thrown: nothing is tested without it.
class PulseServer {
public:
    explicit PulseServer(std::filesystem::path folder);

    void start();
    void kill();
    /// It stays there and answers nobody any more.
    void freeze();

    [[nodiscard]] const std::filesystem::path& folder() const { return m_folder; }

private:
    [[nodiscard]] bool accepts() const;

    std::filesystem::path m_folder;
    std::filesystem::path m_socket;
    std::unique_ptr<ChildProcess> m_process;
};

/// Writes down what the null sink plays: interleaved stereo at 44.1 kHz, from construction on.
class PulseRecorder {
public:
    /// Returns once the recording really runs.
    explicit PulseRecorder(const std::filesystem::path& folder);

    /// Ends the recording and returns it.
    [[nodiscard]] std::vector<float> finish();

private:
    [[nodiscard]] std::uintmax_t recordedBytes() const;

    std::filesystem::path m_file;
    ChildProcess m_process;
};

} // namespace quorvane
