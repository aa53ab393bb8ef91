#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <numbers>
#include <variant>
#include <vector>

#include <gtest/gtest.h>

#include "platform/linux/SndfileAudioFile.h"

namespace quorvane {
namespace {

constexpr int oversampling = 4;

/// The samples that a converter would put between ours, by a windowed sinc: peaks lie there, too.
double truePeak(const std::vector<float>& samples) {
    constexpr int reach = 16;
    double peak = 0;
    for (std::size_t i = reach; i + reach < samples.size(); ++i)
        for (int step = 0; step < oversampling; ++step) {
            const double place = static_cast<double>(step) / oversampling;
            double value = 0;
            for (int k = 1 - reach; k <= reach; ++k) {
                const double x = std::numbers::pi * (place - k);
                const double sinc = x == 0 ? 1 : std::sin(x) / x;
                const double window = 0.5 + 0.5 * std::cos(x / (reach + 1));
                value += samples[i + static_cast<std::size_t>(k + reach) - reach] * sinc * window;
            }
            peak = std::max(peak, std::abs(value));
        }
    return peak;
}

double rootMeanSquare(const std::vector<float>& samples, std::size_t start, std::size_t length) {
    double sum = 0;
    for (std::size_t i = start; i < start + length; ++i)
        sum += double{samples[i]} * samples[i];
    return std::sqrt(sum / static_cast<double>(length));
}

class ShippedCreak : public ::testing::Test {
protected:
    void SetUp() override {
        const auto opened = SndfileAudioFile::open(QUORVANE_RESOURCES "/creaking.mp3");
        ASSERT_TRUE(std::holds_alternative<std::shared_ptr<AudioFile>>(opened));
        AudioFile& file = *std::get<std::shared_ptr<AudioFile>>(opened);
        m_sound.format = file.processingFormat();
        ASSERT_EQ(m_sound.format, (AudioFormat{.sampleRate = 44100, .channels = 1}));
        m_sound.frameCapacity = static_cast<std::uint32_t>(file.length());
        m_sound.samples.resize(m_sound.frameCapacity);
        ASSERT_FALSE(file.read(m_sound));
    }

    PCMBuffer m_sound;
};

TEST_F(ShippedCreak, LastsTwoToFourSeconds) {
    EXPECT_GE(m_sound.frameLength, 2 * 44100);
    EXPECT_LE(m_sound.frameLength, 4 * 44100);
}

TEST_F(ShippedCreak, StartsAtOnce) {
    const auto onset = std::find_if(m_sound.samples.begin(), m_sound.samples.end(),
                                    [](float sample) { return std::abs(sample) > 0.03F; });
    EXPECT_LT(onset - m_sound.samples.begin(), 882);
}

TEST_F(ShippedCreak, IsLoudButLeavesADecibel) {
    const double peak = truePeak(m_sound.samples);
    EXPECT_LT(peak, std::pow(10, -1.0 / 20));
    EXPECT_GT(peak, 0.5);
}

TEST_F(ShippedCreak, HasNoOffset) {
    double sum = 0;
    for (const float sample : m_sound.samples)
        sum += sample;
    EXPECT_LT(std::abs(sum / m_sound.frameLength), 1e-4);
}

TEST_F(ShippedCreak, IsNowhereSilentSoThatItMayBePausedAndResumedAnywhere) {
    constexpr std::size_t window = 44100 / 25;
    const double whole = rootMeanSquare(m_sound.samples, 0, m_sound.samples.size());
    // All but the last tenth of a second, in which it rings out.
    for (std::size_t start = 0; start + window + 4410 < m_sound.samples.size(); start += window / 2)
        EXPECT_GT(rootMeanSquare(m_sound.samples, start, window), whole / 10) << "at " << start;
}

} // namespace
} // namespace quorvane
