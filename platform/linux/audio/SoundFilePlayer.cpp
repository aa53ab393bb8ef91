#include "platform/linux/audio/SoundFilePlayer.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <new>
#include <string>
#include <utility>

#include "platform/PCMBuffers.h"
#include "platform/linux/audio/Resampling.h"
#include "platform/linux/audio/SndfileAudioFile.h"
#include "platform/posix/StandardError.h"
#include "platform/posix/Threads.h"

namespace quorvane {

namespace {

constexpr double mostBytes = 256.0 * 1024 * 1024;
// For a decoder that is still at work when its sound is needed.
constexpr std::chrono::milliseconds decodingTime{50};

std::optional<AudioError> unplayable(SndfileAudioFile& file, const std::filesystem::path& path) {
    const auto frames = static_cast<double>(file.length());
    if (!(frames > 0))
        return AudioError{path.string() + ": there is no sound in it"};
    if (frames * file.processingFormat().channels * sizeof(float) > mostBytes)
        return AudioError{path.string() + ": the sound is too long"};
    return file.findEnd();
}

// Null if it cannot be decoded to its end, or there is not enough memory.
std::shared_ptr<const PCMBuffer> decode(SndfileAudioFile& file,
                                        const std::atomic<bool>& cancelled) {
    auto buffer = makePCMBuffer(file.processingFormat(), static_cast<std::uint32_t>(file.length()));
    if (!buffer || file.read(*buffer, cancelled))
        return nullptr;
    return atStreamRate(std::move(buffer));
}

} // namespace

std::variant<std::shared_ptr<AudioFilePlayer>, AudioError>
SoundFilePlayer::open(const std::shared_ptr<AudioOutput>& output,
                      const std::filesystem::path& path) {
    auto opened = SndfileAudioFile::open(path);
    if (auto* error = std::get_if<AudioError>(&opened))
        return std::move(*error);
    auto file = std::get<std::shared_ptr<SndfileAudioFile>>(std::move(opened));
    if (auto error = unplayable(*file, path))
        return *std::move(error);
    return std::make_shared<SoundFilePlayer>(output, std::move(file));
}

SoundFilePlayer::SoundFilePlayer(std::shared_ptr<AudioOutput> output,
                                 std::shared_ptr<SndfileAudioFile> file)
    : m_output(std::move(output)),
      m_duration(static_cast<double>(file->length()) / file->processingFormat().sampleRate) {
    m_output->add(m_track, nullptr);
    // Without the thread nobody keeps it, and the future is ready at once.
    const auto decoded = std::make_shared<std::promise<void>>();
    m_decoded = decoded->get_future();
    m_decoder = startThread("sound decoder", [this, decoded, file = std::move(file)] {
        decode(*file);
        decoded->set_value();
    });
}

SoundFilePlayer::~SoundFilePlayer() {
    m_cancelled = true;
    if (m_decoder.joinable())
        m_decoder.join();
    m_output->remove(*m_track);
}

/// On the decoder's thread.
void SoundFilePlayer::decode(SndfileAudioFile& file) {
    std::shared_ptr<const PCMBuffer> sound;
    try {
        sound = quorvane::decode(file, m_cancelled);
    } catch (const std::bad_alloc&) {
        printError("a sound stays silent: out of memory");
    }
    setSound(std::move(sound));
}

/// On the decoder's thread. The track may have been told to play meanwhile.
void SoundFilePlayer::setSound(std::shared_ptr<const PCMBuffer> sound) {
    m_output->change([&] {
        m_sound = std::move(sound);
        if (!m_track->isPlaying())
            return;
        if (m_sound)
            placeSound();
        else
            m_output->finish(m_track->clear());
    });
}

/// With the output's mutex held.
void SoundFilePlayer::placeSound() {
    const std::int64_t length = m_sound->frameLength;
    const bool ends = m_loops >= 0;
    m_track->replace(m_sound, ends ? length * (std::int64_t{m_loops} + 1) : endless);
}

bool SoundFilePlayer::hasSound() const {
    return m_decoded.wait_for(decodingTime) != std::future_status::ready ||
           m_output->look([this] { return m_sound != nullptr; });
}

double SoundFilePlayer::currentTime() const {
    const std::int64_t place =
        m_output->look([this] { return m_track->place(AudioOutput::Clock::now()); });
    const double seconds = static_cast<double>(place) / streamRate;
    return seconds > m_duration ? std::fmod(seconds, m_duration) : seconds;
}

void SoundFilePlayer::setCurrentTime(double seconds) {
    const auto place = std::llround(std::clamp(seconds, 0.0, m_duration) * streamRate);
    m_output->change([&] { m_track->moveTo(place, AudioOutput::Clock::now()); });
}

void SoundFilePlayer::setNumberOfLoops(int count) {
    m_output->look([&] { m_loops = count; });
}

void SoundFilePlayer::setVolume(float volume) {
    m_volume = std::clamp(volume, 0.0F, 1.0F);
    m_output->change([this] { m_track->setGain(m_volume); });
}

bool SoundFilePlayer::play() {
    if (!hasSound())
        return false;
    return m_output->change([this] {
        if (!m_track->isPlaying()) {
            if (m_sound)
                placeSound();
            m_track->play(AudioOutput::Clock::now());
        }
        return m_output->isAvailable();
    });
}

void SoundFilePlayer::stop() {
    m_output->change([this] { m_track->pause(AudioOutput::Clock::now()); });
}

bool SoundFilePlayer::isPlaying() const {
    return m_output->look([this] { return m_track->isPlaying() && m_output->isAvailable(); });
}

} // namespace quorvane
