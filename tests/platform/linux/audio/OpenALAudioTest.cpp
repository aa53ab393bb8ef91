#include <chrono>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <variant>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/linux/audio/OpenALAudioService.h"
#include "tests/platform/linux/audio/OpenALAudioFixture.h"
#include "tests/support/PulseServer.h"
#include "tests/support/Recording.h"
#include "tests/support/SoundFiles.h"

namespace quorvane {
namespace {

constexpr AudioFormat stereo = OpenALAudio::stereo;
constexpr AudioFormat mono{.sampleRate = 44100, .channels = 1};
// Sound passes as 32-bit floats; this is a twentieth of a 16-bit step.
constexpr double inaudible = 1.5e-6;

long switchesInASecond() {
    const long before = voluntarySwitches();
    sleep(1);
    return voluntarySwitches() - before;
}

TEST_F(OpenALAudio, StereoSoundComesOutSampleForSample) {
    const PCMBuffer sound = chirp(stereo, 22050);
    ASSERT_FALSE(m_engine->start());
    PulseRecorder recorder(m_folder.path());
    play(sound);
    sleep(0.8);
    const Recording recording(recorder.finish());
    const auto start = recording.soundFrom(0);
    ASSERT_TRUE(start);
    ASSERT_LE(*start + sound.frameLength, recording.length());
    EXPECT_LT(recording.largestDifference(*start, sound, 0, sound.frameLength), inaudible);
    EXPECT_FALSE(recording.soundFrom(*start + sound.frameLength));
}

TEST_F(OpenALAudio, MonoSoundComesOutAlikeOnBothChannels) {
    const PCMBuffer sound = chirp(mono, 22050);
    ASSERT_FALSE(m_engine->start());
    PulseRecorder recorder(m_folder.path());
    play(sound);
    sleep(0.8);
    const Recording recording(recorder.finish());
    const auto start = recording.soundFrom(0);
    ASSERT_TRUE(start);
    ASSERT_LE(*start + sound.frameLength, recording.length());
    EXPECT_LT(recording.largestDifference(*start, sound, 0, sound.frameLength), inaudible);
}

TEST_F(OpenALAudio, SoundOfAnotherRateKeepsItsLevelAndLength) {
    PCMBuffer sound = chirp({.sampleRate = 22050, .channels = 2}, 11025);
    sound.samples.assign(sound.samples.size(), 0.25F);
    ASSERT_FALSE(m_engine->start());
    PulseRecorder recorder(m_folder.path());
    play(sound);
    sleep(0.8);
    const Recording recording(recorder.finish());
    const auto start = recording.soundFrom(0);
    ASSERT_TRUE(start);
    // The resampler's ripple is a hundredth at most.
    EXPECT_NEAR(recording.at(*start + 11025, 0), 0.25, 2.5e-3);
    EXPECT_NEAR(static_cast<double>(recording.silenceFrom(*start, 1000) - *start), 22050, 50);
}

TEST_F(OpenALAudio, IsSilentWhilePausedAndLosesNothing) {
    const PCMBuffer sound = chirp(stereo, 44100);
    ASSERT_FALSE(m_engine->start());
    PulseRecorder recorder(m_folder.path());
    play(sound);
    sleep(0.4);
    m_node->pause();
    sleep(0.5);
    m_node->play();
    sleep(1);
    const Recording recording(recorder.finish());
    const auto start = recording.soundFrom(0);
    ASSERT_TRUE(start);
    const std::size_t paused = recording.silenceFrom(*start, 4410);
    const auto resumed = recording.soundFrom(paused);
    ASSERT_TRUE(resumed);
    // A busy machine sleeps longer than it is told to.
    EXPECT_NEAR(static_cast<double>(*resumed - paused), 22050 + 13230, 22050);
    const std::size_t first = paused - *start;
    const std::size_t second = sound.frameLength - first;
    EXPECT_NEAR(static_cast<double>(first), 17640 + 8820, 17640);
    EXPECT_LT(recording.largestDifference(*start, sound, 0, first), inaudible);
    ASSERT_LE(*resumed + second, recording.length());
    EXPECT_LT(recording.largestDifference(*resumed, sound, first, second), inaudible);
}

TEST_F(OpenALAudio, TwoNodesOfTwoEnginesSoundTogether) {
    PCMBuffer sound = chirp(stereo, 22050);
    sound.samples.assign(sound.samples.size(), 0.125F);
    const auto engine = m_audio->createEngine();
    const auto node = m_audio->createPlayerNode();
    engine->attach(node);
    engine->connectToMainMixer(node, stereo);
    ASSERT_FALSE(m_engine->start());
    ASSERT_FALSE(engine->start());
    PulseRecorder recorder(m_folder.path());
    play(sound);
    node->scheduleBuffer(std::make_shared<PCMBuffer>(sound), BufferOptions::Once, nullptr);
    node->play();
    sleep(0.8);
    const Recording recording(recorder.finish());
    const auto start = recording.soundFrom(0);
    ASSERT_TRUE(start);
    std::size_t together = 0;
    for (std::size_t frame = *start; frame < recording.length(); ++frame)
        if (std::abs(recording.at(frame, 0) - 0.25) < inaudible &&
            std::abs(recording.at(frame, 1) - 0.25) < inaudible)
            ++together;
    // One began a little later than the other.
    EXPECT_GT(together, 4410);
}

TEST_F(OpenALAudio, AnMP3HasNeitherTheEncodersDelayNorItsPadding) {
    // No multiple of a frame of the encoding, so that there is padding to be left out.
    const PCMBuffer sound = chirp(stereo, 40007);
    const auto path = m_folder.path() / "chirp.mp3";
    makeMP3(path, sound);
    const auto opened = m_audio->openFile(path);
    ASSERT_TRUE(std::holds_alternative<std::shared_ptr<AudioFile>>(opened));
    AudioFile& file = *std::get<std::shared_ptr<AudioFile>>(opened);
    ASSERT_EQ(file.length(), 40007);
    const auto decoded = m_audio->createBuffer(stereo, 40007);
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

TEST_F(OpenALAudio, OpensTheDeviceOnlyWhileAnEngineRuns) {
    EXPECT_EQ(clients(), "");
    ASSERT_FALSE(m_engine->start());
    const auto second = m_audio->createEngine();
    ASSERT_FALSE(second->start());
    EXPECT_THAT(clients(), ::testing::EndsWith("float32le 2ch 44100Hz\n"));
    m_engine->stop();
    EXPECT_NE(clients(), "");
    second->stop();
    EXPECT_TRUE(waitUntil([this] { return clients().empty(); }));
}

TEST_F(OpenALAudio, FailsQuicklyAndQuietlyWithoutAnyDevice) {
    m_server.kill();
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const auto begin = std::chrono::steady_clock::now();
    for (int attempt = 0; attempt < 10; ++attempt)
        EXPECT_TRUE(m_engine->start());
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

/// With OpenAL's settings as the program ships them, or given by the person as text.
class OpenALAudioSettings : public ::testing::Test {
protected:
    void SetUp() override { m_server.start(); }

    /// The error of a start under the settings that are in the environment and the home folder.
    [[nodiscard]] static std::optional<AudioError> start() {
        OpenALAudioService audio;
        return audio.createEngine()->start();
    }

    TemporaryFolder m_folder;
    PulseServer m_server{m_folder.path()};
};

TEST_F(OpenALAudioSettings, TheProgramAsksForAShortBuffer) {
    unsetenv("ALSOFT_CONF"); // NOLINT(concurrency-mt-unsafe): no other thread yet.
    OpenALAudioService audio;
    const auto engine = audio.createEngine();
    ASSERT_FALSE(engine->start());
    const auto log = m_folder.path() / "inputs.txt";
    ChildProcess({"pactl", "list", "sink-inputs"}, log).wait();
    const std::string text = fileText(log);
    const std::string key = "Buffer Latency: ";
    const auto place = text.find(key);
    ASSERT_NE(place, std::string::npos) << text;
    EXPECT_LT(std::stoi(text.substr(place + key.size())), 19000);
}

TEST_F(OpenALAudioSettings, AnOpenDeviceWithNothingToPlaySoonWakesNobody) {
    unsetenv("ALSOFT_CONF"); // NOLINT(concurrency-mt-unsafe): no other thread yet.
    OpenALAudioService audio;
    const auto engine = audio.createEngine();
    const auto node = audio.createPlayerNode();
    engine->attach(node);
    ASSERT_FALSE(engine->start());
    const long open = switchesInASecond();
    sleep(10);
    // The sound server's client library still asks for the time now and then.
    EXPECT_LT(switchesInASecond() * 10, open);
    EXPECT_TRUE(engine->isRunning());
    PulseRecorder recorder(m_folder.path());
    node->scheduleBuffer(std::make_shared<PCMBuffer>(chirp(stereo, 22050)), BufferOptions::Once,
                         nullptr);
    node->play();
    sleep(0.7);
    EXPECT_TRUE(Recording(recorder.finish()).soundFrom(0));
}

TEST_F(OpenALAudioSettings, ADeviceThatNobodyHearsIsNoneEvenWhenAskedFor) {
    setenv("ALSOFT_DRIVERS", "null", 1); // NOLINT(concurrency-mt-unsafe): no other thread yet.
    EXPECT_TRUE(start());
    unsetenv("ALSOFT_DRIVERS"); // NOLINT(concurrency-mt-unsafe): no other thread left.
}

TEST_F(OpenALAudioSettings, APersonsOwnFileWinsOverTheProgram) {
    m_folder.write(".alsoftrc", "drivers = null\n");
    unsetenv("ALSOFT_CONF"); // NOLINT(concurrency-mt-unsafe): no other thread yet.
    EXPECT_TRUE(start());
    std::filesystem::remove(m_folder.path() / ".alsoftrc");
    unsetenv("ALSOFT_CONF"); // NOLINT(concurrency-mt-unsafe): no other thread left.
    EXPECT_FALSE(start());
}

TEST_F(OpenALAudioSettings, APersonsExplicitConfigurationIsLeftAlone) {
    const auto file = m_folder.write("mine.conf", "drivers = null\n");
    setenv("ALSOFT_CONF", file.c_str(), 1); // NOLINT(concurrency-mt-unsafe): no other thread yet.
    EXPECT_TRUE(start());
    EXPECT_EQ(std::getenv("ALSOFT_CONF"), file); // NOLINT(concurrency-mt-unsafe)
    unsetenv("ALSOFT_CONF"); // NOLINT(concurrency-mt-unsafe): no other thread left.
}

} // namespace
} // namespace quorvane
