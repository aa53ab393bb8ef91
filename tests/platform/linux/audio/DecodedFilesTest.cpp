#include <array>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <variant>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/linux/audio/PulseAudioService.h"
#include "tests/support/SoundFiles.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {
namespace {

using ::testing::HasSubstr;

/// Files of sound, for which no server is needed.
class DecodedFiles : public ::testing::Test {
protected:
    static constexpr AudioFormat stereo{.sampleRate = 44100, .channels = 2};

    [[nodiscard]] std::string errorOf(const std::filesystem::path& path) {
        const auto made = m_audio.createFilePlayer(path);
        const auto* error = std::get_if<AudioError>(&made);
        return error ? error->description : "";
    }

    TemporaryFolder m_folder;
    PulseAudioService m_audio;
};

TEST_F(DecodedFiles, AnMP3HasNeitherTheEncodersDelayNorItsPadding) {
    // No multiple of a frame of the encoding, so that there is padding to be left out.
    const PCMBuffer sound = chirp(stereo, 40007);
    const auto path = m_folder.path() / "chirp.mp3";
    makeMP3(path, sound);
    const auto opened = m_audio.openFile(path);
    ASSERT_TRUE(std::holds_alternative<std::shared_ptr<AudioFile>>(opened));
    AudioFile& file = *std::get<std::shared_ptr<AudioFile>>(opened);
    ASSERT_EQ(file.length(), 40007);
    const auto decoded = m_audio.createBuffer(stereo, 40007);
    ASSERT_FALSE(file.read(*decoded));
    double power = 0;
    double product = 0;
    double decodedPower = 0;
    for (std::size_t i = 0; i < sound.samples.size(); ++i) {
        power += std::pow(sound.samples[i], 2);
        product += double{sound.samples[i]} * decoded->samples[i];
        decodedPower += std::pow(decoded->samples[i], 2);
    }
    // Whatever level the encoder chose, the shape is the same; one frame of misplacement alone
    // would bring this down to 0.99.
    EXPECT_GT(product / std::sqrt(power * decodedPower), 0.9999);
}

TEST_F(DecodedFiles, WhatIsNoUsableSoundIsAnErrorInWords) {
    const auto path = m_folder.write("sound.wav", "");
    EXPECT_THAT(errorOf(path), HasSubstr("not a sound file"));
    writeWAV(path, {.format = stereo, .frameCapacity = 0, .frameLength = 0, .samples = {}});
    EXPECT_THAT(errorOf(path), HasSubstr("there is no sound in it"));
    EXPECT_THAT(errorOf(m_folder.path()), HasSubstr("Is a directory"));
}

TEST_F(DecodedFiles, ASoundOfHoursIsRefusedBeforeItIsDecoded) {
    const auto path = m_folder.path() / "hours.wav";
    writeWAV(path, chirp(stereo, 441));
    // The same header, with three hours of silence behind it that take no room on the disk.
    constexpr std::uint32_t bytes = 3 * 3600 * 44100 * 4U;
    std::filesystem::resize_file(path, 44 + bytes);
    std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
    const auto write = [&file](std::streamoff place, std::uint32_t value) {
        const std::array<char, 4> little{
            static_cast<char>(value & 0xff), static_cast<char>(value >> 8 & 0xff),
            static_cast<char>(value >> 16 & 0xff), static_cast<char>(value >> 24 & 0xff)};
        file.seekp(place).write(little.data(), little.size());
    };
    write(4, bytes + 36);
    write(40, bytes);
    file.close();
    EXPECT_THAT(errorOf(path), HasSubstr("the sound is too long"));
}

} // namespace
} // namespace quorvane
