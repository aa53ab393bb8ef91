#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/ChildProcess.h"
#include "tests/support/Recording.h"
#include "tests/support/SoundServer.h"

namespace quorvane {

/// Records what a sink of a sound server plays: interleaved stereo at 44.1 kHz, from construction
/// on. Takes it in parts of up to 0.1 s: in shorter ones it would shorten the sink's own buffer.
class SoundRecorder {
public:
    /// Returns when the recording runs.
    explicit SoundRecorder(const SoundServer& server, const std::string& sink = "out");

    /// What has been recorded so far.
    [[nodiscard]] Recording recorded() const;
    /// Ends the recording after half a second more, unless its server has gone, and returns it.
    [[nodiscard]] std::vector<float> finish();

private:
    [[nodiscard]] std::uintmax_t recordedBytes() const;

    std::filesystem::path m_file;
    ChildProcess m_process;
};

} // namespace quorvane
