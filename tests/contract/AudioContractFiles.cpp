#include "tests/contract/AudioContract.h"

#include <variant>

namespace quorvane {
namespace {

TEST_P(AudioContract, ReadsAWholeFile) {
    const auto opened = audio().openFile(m_side->goodFile());
    ASSERT_TRUE(std::holds_alternative<std::shared_ptr<AudioFile>>(opened))
        << std::get<AudioError>(opened).description;
    AudioFile& file = *std::get<std::shared_ptr<AudioFile>>(opened);
    EXPECT_EQ(file.processingFormat(), stereo);
    EXPECT_EQ(file.length(), AudioContractSide::goodFileFrames);
    const auto buffer = audio().createBuffer(stereo, AudioContractSide::goodFileFrames);
    ASSERT_FALSE(file.read(*buffer));
    EXPECT_EQ(buffer->frameLength, AudioContractSide::goodFileFrames);
    EXPECT_THAT(buffer->samples, ::testing::Contains(::testing::Gt(0.2F)));
}

TEST_P(AudioContract, AMissingFileCannotBeOpened) {
    const auto opened = audio().openFile(m_side->missingFile());
    ASSERT_TRUE(std::holds_alternative<AudioError>(opened));
    EXPECT_THAT(std::get<AudioError>(opened).description,
                ::testing::HasSubstr("No such file or directory"));
}

TEST_P(AudioContract, AFileWithoutSoundCannotBeOpened) {
    const auto opened = audio().openFile(m_side->nonAudioFile());
    ASSERT_TRUE(std::holds_alternative<AudioError>(opened));
    EXPECT_THAT(std::get<AudioError>(opened).description, ::testing::HasSubstr("not a sound file"));
}

TEST_P(AudioContract, ATruncatedFileCannotBeReadWhole) {
    const auto opened = audio().openFile(m_side->truncatedFile());
    ASSERT_TRUE(std::holds_alternative<std::shared_ptr<AudioFile>>(opened));
    AudioFile& file = *std::get<std::shared_ptr<AudioFile>>(opened);
    EXPECT_EQ(file.length(), AudioContractSide::goodFileFrames);
    const auto buffer = audio().createBuffer(stereo, static_cast<std::uint32_t>(file.length()));
    const auto error = file.read(*buffer);
    ASSERT_TRUE(error);
    EXPECT_THAT(error->description, ::testing::HasSubstr("ends before its length"));
    EXPECT_LT(buffer->frameLength, AudioContractSide::goodFileFrames);
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

} // namespace
} // namespace quorvane
