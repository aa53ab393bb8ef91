#include "resources/synthesis/SoundFile.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>
#include <utility>

namespace quorvane::synthesis {

namespace {

void scaleToPeak(Sound& sound, double wanted) {
    double peak = 0;
    for (const double sample : sound)
        peak = std::max(peak, std::abs(sample));
    for (double& sample : sound)
        sample *= wanted / peak;
}

void writeNumber(std::ostream& stream, std::uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i)
        stream.put(static_cast<char>(value >> (8U * static_cast<unsigned>(i)) & 0xFFU));
}

bool writeWAV(const std::string& path, const Sound& sound) {
    std::ofstream stream(path, std::ios::binary);
    const auto rate = static_cast<std::uint32_t>(sampleRate);
    const auto dataBytes = static_cast<std::uint32_t>(sound.size() * 2);
    stream << "RIFF";
    writeNumber(stream, 36 + dataBytes, 4);
    stream << "WAVEfmt ";
    writeNumber(stream, 16, 4);
    writeNumber(stream, 1, 2);
    writeNumber(stream, 1, 2);
    writeNumber(stream, rate, 4);
    writeNumber(stream, rate * 2, 4);
    writeNumber(stream, 2, 2);
    writeNumber(stream, 16, 2);
    stream << "data";
    writeNumber(stream, dataBytes, 4);
    for (const double sample : sound)
        writeNumber(stream, static_cast<std::uint32_t>(std::lround(sample * 32767)), 2);
    return static_cast<bool>(stream.flush());
}

} // namespace

int writeSound(std::span<char*> arguments, Sound sound, double peak) {
    if (arguments.size() != 2) {
        std::fprintf(stderr, "usage: %s FILE.wav\n", arguments[0]);
        return 2;
    }
    scaleToPeak(sound, peak);
    if (writeWAV(arguments[1], sound))
        return 0;
    std::fprintf(stderr, "%s: cannot write %s\n", arguments[0], arguments[1]);
    return 1;
}

} // namespace quorvane::synthesis
