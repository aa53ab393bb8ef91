#include "tests/contract/AudioContract.h"

#include <cmath>
#include <limits>
#include <variant>

namespace quorvane {
namespace {

TEST_P(AudioContract, ReadsAWholeFile) {
    const auto opened = audio().openFile(m_backend->goodFile());
    ASSERT_TRUE(std::holds_alternative<std::shared_ptr<AudioFile>>(opened))
        << std::get<AudioError>(opened).description;
    AudioFile& file = *std::get<std::shared_ptr<AudioFile>>(opened);
    EXPECT_EQ(file.processingFormat(), stereo);
    EXPECT_EQ(file.length(), AudioBackend::goodFileFrames);
    const auto buffer = audio().createBuffer(stereo, AudioBackend::goodFileFrames);
    ASSERT_FALSE(file.read(*buffer));
    EXPECT_EQ(buffer->frameLength, AudioBackend::goodFileFrames);
    EXPECT_THAT(buffer->samples, ::testing::Contains(::testing::Gt(0.2F)));
}

TEST_P(AudioContract, AFileReadTwiceGivesTheSameSamples) {
    const auto opened = audio().openFile(m_backend->clipFile());
    AudioFile& file = *std::get<std::shared_ptr<AudioFile>>(opened);
    const PCMBuffer clip = AudioBackend::clip();
    // The precision of 16 bits.
    const auto isClose = ::testing::Pointwise(::testing::FloatNear(1e-4F), clip.samples);
    for (int reading = 0; reading < 2; ++reading) {
        const auto buffer = audio().createBuffer(stereo, 22050);
        ASSERT_FALSE(file.read(*buffer));
        EXPECT_EQ(buffer->frameLength, 22050U);
        EXPECT_TRUE(::testing::Matches(isClose)(buffer->samples));
    }
}

TEST_P(AudioContract, AMissingFileCannotBeOpened) {
    const auto opened = audio().openFile(m_backend->missingFile());
    ASSERT_TRUE(std::holds_alternative<AudioError>(opened));
    EXPECT_THAT(std::get<AudioError>(opened).description,
                ::testing::HasSubstr("No such file or directory"));
}

TEST_P(AudioContract, AFileWithoutSoundCannotBeOpened) {
    const auto opened = audio().openFile(m_backend->nonAudioFile());
    ASSERT_TRUE(std::holds_alternative<AudioError>(opened));
    EXPECT_THAT(std::get<AudioError>(opened).description, ::testing::HasSubstr("not a sound file"));
}

TEST_P(AudioContract, ATruncatedFileCannotBeReadWhole) {
    const auto opened = audio().openFile(m_backend->truncatedFile());
    ASSERT_TRUE(std::holds_alternative<std::shared_ptr<AudioFile>>(opened));
    AudioFile& file = *std::get<std::shared_ptr<AudioFile>>(opened);
    EXPECT_EQ(file.length(), AudioBackend::goodFileFrames);
    const auto buffer = audio().createBuffer(stereo, static_cast<std::uint32_t>(file.length()));
    const auto error = file.read(*buffer);
    ASSERT_TRUE(error);
    EXPECT_THAT(error->description, ::testing::HasSubstr("ends before its length"));
    EXPECT_LT(buffer->frameLength, AudioBackend::goodFileFrames);
}

TEST_P(AudioContract, ADamagedFileCannotBeReadWhole) {
    const auto opened = audio().openFile(m_backend->damagedFile());
    ASSERT_TRUE(std::holds_alternative<std::shared_ptr<AudioFile>>(opened));
    AudioFile& file = *std::get<std::shared_ptr<AudioFile>>(opened);
    EXPECT_EQ(file.length(), 22050);
    EXPECT_TRUE(file.read(*audio().createBuffer(stereo, 22050)));
}

TEST_P(AudioContract, ABufferNeedsChannelsAndARate) {
    EXPECT_FALSE(audio().createBuffer({.sampleRate = 44100, .channels = 0}, 10));
    EXPECT_FALSE(audio().createBuffer({.sampleRate = 0, .channels = 2}, 10));
    const auto buffer = audio().createBuffer(stereo, 10);
    ASSERT_TRUE(buffer);
    EXPECT_EQ(buffer->frameCapacity, 10);
    EXPECT_EQ(buffer->frameLength, 0);
    EXPECT_EQ(buffer->samples.size(), 20);
}

TEST_P(AudioContract, ABufferBeyondAllMemoryIsNotMade) {
    constexpr unsigned most = std::numeric_limits<unsigned>::max();
    EXPECT_FALSE(audio().createBuffer({.sampleRate = 44100, .channels = most}, most));
}

TEST_P(AudioContract, AStandardFormatHasAFiniteRateAboveZeroAndOneChannelOrTwo) {
    EXPECT_EQ(audio().standardFormat(44100, 2), stereo);
    EXPECT_EQ(audio().standardFormat(8000, 1), (AudioFormat{.sampleRate = 8000, .channels = 1}));
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (const double rate : {0.0, -44100.0, infinity, std::nan("")})
        EXPECT_FALSE(audio().standardFormat(rate, 2)) << rate;
    for (const unsigned channels : {0U, 3U})
        EXPECT_FALSE(audio().standardFormat(44100, channels)) << channels;
}

} // namespace
} // namespace quorvane
