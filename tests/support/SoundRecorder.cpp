#include "tests/support/SoundRecorder.h"

#include <csignal>
#include <cstring>
#include <stdexcept>

#include "tests/support/TemporaryFolder.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

std::vector<float> samplesIn(const std::filesystem::path& file) {
    const std::string bytes = fileText(file);
    std::vector<float> samples(bytes.size() / sizeof(float));
    std::memcpy(samples.data(), bytes.data(), samples.size() * sizeof(float));
    return samples;
}

std::filesystem::path newFile(const std::filesystem::path& file) {
    std::filesystem::remove(file);
    return file;
}

} // namespace

SoundRecorder::SoundRecorder(const SoundServer& server, const std::string& sink)
    : m_file(newFile(server.folder() / (sink + ".raw"))),
      m_process({"parec", "--device=" + sink + ".monitor", "--raw", "--format=float32le",
                 "--rate=44100", "--channels=2", "--latency-msec=100", m_file.string()},
                server.folder() / "parec.log") {
    if (!waitUntil([this] { return recordedBytes() > 0; }))
        throw std::runtime_error("parec does not record");
}

std::uintmax_t SoundRecorder::recordedBytes() const {
    std::error_code missing;
    const auto size = std::filesystem::file_size(m_file, missing);
    return missing ? 0 : size;
}

Recording SoundRecorder::recorded() const {
    return Recording(samplesIn(m_file));
}

std::vector<float> SoundRecorder::finish() {
    constexpr std::uintmax_t halfASecond = sizeof(float) * 2 * 44100 / 2;
    const std::uintmax_t enough = recordedBytes() + halfASecond;
    if (!waitUntil([&] { return recordedBytes() >= enough || !m_process.isAlive(); }))
        throw std::runtime_error("parec has stopped recording");
    m_process.end(SIGTERM);
    std::vector<float> samples = samplesIn(m_file);
    std::filesystem::remove(m_file);
    return samples;
}

} // namespace quorvane
