#include "tests/support/SoundFiles.h"

#include <cmath>
#include <fstream>
#include <numbers>
#include <stdexcept>
#include <string>
#include <vector>

#include <sndfile.hh>

#include "tests/support/ChildProcess.h"

namespace quorvane {

namespace {

void write(const std::filesystem::path& path, int format, const PCMBuffer& sound) {
    SndfileHandle file(path.c_str(), SFM_WRITE, format, static_cast<int>(sound.format.channels),
                       static_cast<int>(sound.format.sampleRate));
    if (file.writef(sound.samples.data(), sound.frameLength) != sound.frameLength)
        throw std::runtime_error("cannot write " + path.string());
}

} // namespace

PCMBuffer chirp(const AudioFormat& format, std::uint32_t frames) {
    PCMBuffer buffer{.format = format,
                     .frameCapacity = frames,
                     .frameLength = frames,
                     .samples = std::vector<float>(std::size_t{frames} * format.channels)};
    for (std::size_t i = 0; i < buffer.samples.size(); ++i) {
        const std::size_t frame = i / format.channels;
        const double time = static_cast<double>(frame) / format.sampleRate;
        const double base = i % format.channels == 0 ? 300 : 450;
        const double phase = 2 * std::numbers::pi * (base * time + 400 * time * time);
        buffer.samples[i] = static_cast<float>(0.35 * std::cos(phase));
    }
    return buffer;
}

void writeWAV(const std::filesystem::path& path, const PCMBuffer& sound) {
    write(path, SF_FORMAT_WAV | SF_FORMAT_PCM_16, sound);
}

void writeDamagedFLAC(const std::filesystem::path& path, const PCMBuffer& sound) {
    write(path, SF_FORMAT_FLAC | SF_FORMAT_PCM_16, sound);
    const auto half = static_cast<std::streamoff>(std::filesystem::file_size(path) / 2);
    std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(half);
    file << std::string(1000, 'x');
    if (!file.flush())
        throw std::runtime_error("cannot damage " + path.string());
}

void makeMP3(const std::filesystem::path& path, const PCMBuffer& sound) {
    const std::filesystem::path wav = path.string() + ".wav";
    writeWAV(wav, sound);
    if (ChildProcess::run({"lame", "--quiet", "-b", "192", wav.string(), path.string()}) != 0)
        throw std::runtime_error("lame made no " + path.string());
}

void copyFirstHalf(const std::filesystem::path& from, const std::filesystem::path& to) {
    std::filesystem::copy_file(from, to);
    std::filesystem::resize_file(to, std::filesystem::file_size(from) / 2);
}

} // namespace quorvane
