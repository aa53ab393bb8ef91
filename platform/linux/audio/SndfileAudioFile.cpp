#include "platform/linux/audio/SndfileAudioFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fstream>
#include <system_error>
#include <utility>
#include <vector>

namespace quorvane {

namespace {

// Frames that are decoded in some milliseconds.
constexpr sf_count_t block = 65536;

/// The system's reason for not opening the file, none if it opens: libsndfile has the same message
/// for every reason.
std::optional<AudioError> accessError(const std::filesystem::path& path) {
    if (std::filesystem::is_directory(path))
        return AudioError{path.string() + ": Is a directory"};
    errno = 0;
    if (std::ifstream(path, std::ios::binary).is_open())
        return std::nullopt;
    return AudioError{path.string() + ": " + std::generic_category().message(errno)};
}

} // namespace

std::variant<std::shared_ptr<SndfileAudioFile>, AudioError>
SndfileAudioFile::open(const std::filesystem::path& path) {
    if (auto error = accessError(path))
        return *std::move(error);
    SF_INFO info{};
    Handle file(sf_open(path.c_str(), SFM_READ, &info));
    if (!file || info.channels <= 0)
        return AudioError{path.string() + ": not a sound file that can be decoded"};
    return std::shared_ptr<SndfileAudioFile>(new SndfileAudioFile(std::move(file), info, path));
}

SndfileAudioFile::SndfileAudioFile(Handle file, const SF_INFO& info, std::filesystem::path path)
    : m_file(std::move(file)), m_info(info), m_path(std::move(path)) {}

AudioFormat SndfileAudioFile::processingFormat() const {
    return {.sampleRate = static_cast<double>(m_info.samplerate),
            .channels = static_cast<unsigned>(m_info.channels)};
}

std::int64_t SndfileAudioFile::length() const {
    return m_info.frames;
}

std::optional<AudioError> SndfileAudioFile::read(PCMBuffer& buffer) {
    return read(buffer, false);
}

std::optional<AudioError> SndfileAudioFile::read(PCMBuffer& buffer,
                                                 const std::atomic<bool>& cancelled) {
    if (!(buffer.format == processingFormat()))
        return AudioError{m_path.string() + ": the buffer has another format"};
    sf_seek(m_file.get(), 0, SEEK_SET);
    const sf_count_t wanted = std::min<sf_count_t>(m_info.frames, buffer.frameCapacity);
    sf_count_t done = 0;
    while (done < wanted && !cancelled) {
        float* place = &buffer.samples[static_cast<std::size_t>(done * m_info.channels)];
        const sf_count_t got = sf_readf_float(m_file.get(), place, std::min(wanted - done, block));
        if (got <= 0)
            break;
        done += got;
    }
    buffer.frameLength = static_cast<std::uint32_t>(done);
    if (done < m_info.frames)
        return endsTooSoon();
    return std::nullopt;
}

std::optional<AudioError> SndfileAudioFile::findEnd() {
    std::vector<float> frame(static_cast<std::size_t>(m_info.channels));
    if (m_info.seekable && (sf_seek(m_file.get(), m_info.frames - 1, SEEK_SET) < 0 ||
                            sf_readf_float(m_file.get(), frame.data(), 1) < 1))
        return endsTooSoon();
    return std::nullopt;
}

AudioError SndfileAudioFile::endsTooSoon() const {
    return {m_path.string() + ": the sound ends before its length"};
}

} // namespace quorvane
