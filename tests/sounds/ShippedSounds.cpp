#include "tests/sounds/ShippedSounds.h"

#include <memory>
#include <ostream>
#include <stdexcept>
#include <utility>
#include <variant>

#include "platform/linux/audio/SndfileAudioFile.h"

namespace quorvane {

std::ostream& operator<<(std::ostream& stream, const ShippedSound& sound) {
    return stream << sound.name;
}

std::string pathOf(const ShippedSound& sound) {
    return std::string(QUORVANE_RESOURCES "/") + sound.name + ".mp3";
}

Samples shipped(const ShippedSound& sound) {
    return decoded(pathOf(sound));
}

Samples decoded(const std::string& path) {
    const auto opened = SndfileAudioFile::open(path);
    if (const auto* error = std::get_if<AudioError>(&opened))
        throw std::runtime_error(error->description);
    AudioFile& file = *std::get<std::shared_ptr<SndfileAudioFile>>(opened);
    PCMBuffer buffer;
    buffer.format = file.processingFormat();
    if (!(buffer.format == AudioFormat{.sampleRate = sampleRate, .channels = 1}))
        throw std::runtime_error(path + ": not one channel at 44100 Hz");
    buffer.frameCapacity = static_cast<std::uint32_t>(file.length());
    buffer.samples.resize(buffer.frameCapacity);
    if (const auto error = file.read(buffer))
        throw std::runtime_error(error->description);
    return std::move(buffer.samples);
}

} // namespace quorvane
