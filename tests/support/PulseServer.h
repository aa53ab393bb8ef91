#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/ChildProcess.h"

namespace quorvane {

/// A PulseAudio server with a null sink at 44.1 kHz, its files in a folder of the test. The
/// environment of this process names it as the server, so it is made before there is a second
/// thread. `start` throws when that fails.
class PulseServer {
public:
    explicit PulseServer(std::filesystem::path folder);

    void start();
    void kill();
    /// It keeps its connections and no longer answers.
    void freeze();

    [[nodiscard]] const std::filesystem::path& folder() const { return m_folder; }

private:
    [[nodiscard]] bool accepts() const;

    std::filesystem::path m_folder;
    std::filesystem::path m_socket;
    std::unique_ptr<ChildProcess> m_process;
};

/// Records what the null sink plays: interleaved stereo at 44.1 kHz, from construction on.
class PulseRecorder {
public:
    /// Returns when the recording runs.
    explicit PulseRecorder(const std::filesystem::path& folder);

    /// Ends the recording and returns it.
    [[nodiscard]] std::vector<float> finish();

private:
    [[nodiscard]] std::uintmax_t recordedBytes() const;

    std::filesystem::path m_file;
    ChildProcess m_process;
};

} // namespace quorvane
